#include "notify/text/OpenableLink.h"

#include <gtest/gtest.h>

namespace
{

TEST(OpenableLink, IsAnAddressOfTheWebOrAFileServerOrOneToWriteTo)
{
    for (const char *link : {"http://a.example", "https://a.example/b", "ftp://a.example", "mailto:a@b.example",
                             "HTTP://A.EXAMPLE", "https://[::1]/"}) {
        EXPECT_TRUE(isOpenableLink(QUrl(QLatin1String(link)))) << link;
    }
    for (const char *link : {"", "a", "#a", "/a", "//a.example", "http:", "http:/a", "https:a", "ftp:", "mailto:",
                             "file:///a", "file://a.example/b", "javascript:a", "data:text/plain,a", "about:blank",
                             "sftp://a.example", "smb://a.example", "ssh://a.example", "a-handler://a.example"}) {
        EXPECT_FALSE(isOpenableLink(QUrl(QLatin1String(link)))) << link;
    }
}

} // namespace
