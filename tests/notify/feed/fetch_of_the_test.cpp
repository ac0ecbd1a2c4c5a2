// kivfetch, which trusts a server of the test's, and may be given less time.

#include "fetch/FeedFetch.h"

#include <cstdlib>

int main(int argc, char **argv)
{
    FetchOptions options;
    if (const char *certificates = std::getenv("KIV_TRUSTED_CERTIFICATE")) {
        options.trustedCertificates = certificates;
    }
    if (const char *maxDuration = std::getenv("KIV_MAX_DURATION")) {
        options.maxDuration = std::chrono::milliseconds(std::atoi(maxDuration));
    }
    fetchFeed({argv, static_cast<std::size_t>(argc)}, options);
}
