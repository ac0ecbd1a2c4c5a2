#include "fetch/Proxy.h"

#include <array>
#include <proxy.h>
#include <string_view>
#include <vector>

namespace
{

struct Scheme {
    std::string_view ofLibproxy;
    std::string_view ofCurl;
};

/// By SOCKS a name goes to the proxy as it is: it may be one that only the proxy can look up.
constexpr std::array schemes{Scheme{"http://", "http://"}, Scheme{"https://", "https://"},
                             Scheme{"socks://", "socks5h://"}, Scheme{"socks5://", "socks5h://"},
                             Scheme{"socks4a://", "socks4a://"}};

} // namespace

std::string proxyFor(const std::string &address)
{
    pxProxyFactory *const factory = px_proxy_factory_new();
    char **const list = px_proxy_factory_get_proxies(factory, address.c_str());
    std::vector<std::string> proxies;
    for (char *const *proxy = list; proxy && *proxy; ++proxy) {
        proxies.emplace_back(*proxy);
    }
    px_proxy_factory_free_proxies(list);
    px_proxy_factory_free(factory);
    return usableProxy(proxies);
}

std::string usableProxy(std::span<const std::string> proxies)
{
    for (const std::string &proxy : proxies) {
        if (proxy.starts_with("direct:")) {
            break;
        }
        for (const Scheme &scheme : schemes) {
            if (proxy.starts_with(scheme.ofLibproxy)) {
                return std::string(scheme.ofCurl) + proxy.substr(scheme.ofLibproxy.size());
            }
        }
    }
    return {};
}
