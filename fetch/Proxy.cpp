#include "fetch/Proxy.h"

#include <array>
#include <curl/curl.h>
#include <string_view>
#include <vector>

// Of libproxy/proxy.h, and the same in all versions. The header itself wants GLib's since 0.5, for what is not used
// here.
extern "C" {
using pxProxyFactory = struct pxProxyFactory_;
pxProxyFactory *px_proxy_factory_new();
char **px_proxy_factory_get_proxies(pxProxyFactory *self, const char *url);
void px_proxy_factory_free_proxies(char **proxies);
void px_proxy_factory_free(pxProxyFactory *self);
}

namespace
{

struct Scheme {
    std::string_view ofLibproxy;
    std::string_view ofCurl;
};

/// By SOCKS a name goes to the proxy as it is: it may be one that only the proxy can look up.
constexpr std::array schemes{Scheme{"http://", "http://"},       Scheme{"https://", "https://"},
                             Scheme{"socks://", "socks5h://"},   Scheme{"socks5://", "socks5h://"},
                             Scheme{"socks5h://", "socks5h://"}, Scheme{"socks4://", "socks4a://"},
                             Scheme{"socks4a://", "socks4a://"}};

bool beginsWith(const std::string &text, std::string_view scheme)
{
    return curl_strnequal(text.c_str(), scheme.data(), scheme.size()) != 0;
}

} // namespace

std::optional<std::string> proxyFor(const std::string &address)
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

std::optional<std::string> usableProxy(std::span<const std::string> proxies)
{
    for (const std::string &proxy : proxies) {
        if (beginsWith(proxy, "direct:")) {
            return "";
        }
        for (const Scheme &scheme : schemes) {
            if (beginsWith(proxy, scheme.ofLibproxy)) {
                return std::string(scheme.ofCurl) + proxy.substr(scheme.ofLibproxy.size());
            }
        }
    }
    return proxies.empty() ? std::optional<std::string>("") : std::nullopt;
}
