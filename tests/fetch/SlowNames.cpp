#include <cstdlib>
#include <fcntl.h>
#include <netdb.h>
#include <unistd.h>

// Loaded into kivfetch ahead of the C library: a resolver that never answers. It makes the file KIV_LOOKUP_FILE when it
// is asked.

extern "C" int getaddrinfo(const char *, const char *, const addrinfo *, addrinfo **)
{
    if (const char *path = std::getenv("KIV_LOOKUP_FILE")) {
        ::close(::open(path, O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
    }
    for (;;) {
        ::pause();
    }
}
