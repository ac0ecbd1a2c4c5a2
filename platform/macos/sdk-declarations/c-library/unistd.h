/// A name for confstr().
#define _CS_DARWIN_USER_CACHE_DIR 65538
