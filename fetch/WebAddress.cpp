#include "fetch/WebAddress.h"

#include <curl/curl.h>
#include <memory>

namespace
{

using Address = std::unique_ptr<CURLU, decltype(&curl_url_cleanup)>;

/// Empty when there is none.
std::string partOf(const Address &address, CURLUPart part)
{
    char *text = nullptr;
    if (curl_url_get(address.get(), part, &text, 0) != CURLUE_OK) {
        return {};
    }
    std::string result(text);
    curl_free(text);
    return result;
}

bool isLoopbackHost(const std::string &host)
{
    const bool isNumber = host.find_first_not_of("0123456789.") == std::string::npos;
    return curl_strequal(host.c_str(), "localhost") != 0 || host == "[::1]" || (isNumber && host.starts_with("127."));
}

} // namespace

std::optional<WebAddress> webAddress(const std::string &text)
{
    const Address address(curl_url(), &curl_url_cleanup);
    if (curl_url_set(address.get(), CURLUPART_URL, text.c_str(), 0) != CURLUE_OK) {
        return std::nullopt;
    }
    const std::string scheme = partOf(address, CURLUPART_SCHEME);
    const bool isSecure = scheme == "https";
    if (!isSecure && scheme != "http") {
        return std::nullopt;
    }
    return WebAddress{.isSecure = isSecure, .isLoopback = isLoopbackHost(partOf(address, CURLUPART_HOST))};
}
