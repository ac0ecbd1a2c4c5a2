#include "fetch/Proxy.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace
{

TEST(UsableProxy, IsTheFirstOfAKindThatIsKnown)
{
    struct Case {
        std::vector<std::string> proxies;
        std::optional<std::string> expected;
    };
    for (const auto &[proxies, expected] :
         {Case{{}, ""}, Case{{"direct://"}, ""}, Case{{"http://proxy.example:8080"}, "http://proxy.example:8080"},
          Case{{"https://proxy.example:443"}, "https://proxy.example:443"},
          Case{{"socks://proxy.example:1080"}, "socks5h://proxy.example:1080"},
          Case{{"socks5://proxy.example:1080"}, "socks5h://proxy.example:1080"},
          Case{{"socks4a://proxy.example:1080"}, "socks4a://proxy.example:1080"},
          Case{{"http://one.example:1", "direct://"}, "http://one.example:1"},
          Case{{"direct://", "http://one.example:1"}, ""},
          Case{{"gopher://one.example:1", "http://two.example:2"}, "http://two.example:2"},
          Case{{"socks4://proxy.example:1080"}, "socks4a://proxy.example:1080"},
          Case{{"socks5h://proxy.example:1080"}, "socks5h://proxy.example:1080"},
          Case{{"HTTP://proxy.example:8080"}, "http://proxy.example:8080"},
          Case{{"gopher://one.example:1", "direct://"}, ""}, Case{{"gopher://one.example:1"}, std::nullopt},
          Case{{"pac+http://one.example:1/script"}, std::nullopt}}) {
        EXPECT_EQ(usableProxy(proxies), expected);
    }
}

} // namespace
