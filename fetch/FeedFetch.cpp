#include "fetch/FeedFetch.h"

#include "fetch/FetchWatch.h"
#include "fetch/Proxy.h"
#include "fetch/RequestHeaders.h"
#include "fetch/StandardOutput.h"
#include "fetch/WebAddress.h"

#include <array>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <curl/curl.h>
#include <optional>
#include <string_view>

namespace
{

constexpr int usageError = 2;
constexpr int maxRedirects = 50;
/// Of the heads of all answers to one request: interim ones, redirects and the answer proper.
constexpr std::size_t maxHeadBytes = std::size_t{256} * 1024;

struct Arguments {
    std::string address;
    std::chrono::milliseconds silence;
    bool isTalkative;
};

/// A request that may be redirected.
struct Request {
    CURL *connection;
    FetchWatch &watch;
    std::size_t headBytes = 0;
    bool hasLocation = false;
    bool isHeadWritten = false;
};

std::optional<Arguments> argumentsFrom(std::span<char *const> arguments)
{
    const bool isTalkative = arguments.size() == 4 && std::string_view(arguments[1]) == "-v";
    if (arguments.size() != 3 && !isTalkative) {
        return std::nullopt;
    }
    const std::string_view number = arguments.back();
    int milliseconds = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), milliseconds);
    if (number.empty() || error != std::errc() || end != number.data() + number.size() || milliseconds < 0) {
        return std::nullopt;
    }
    return Arguments{arguments[arguments.size() - 2], std::chrono::milliseconds(milliseconds), isTalkative};
}

long statusOf(CURL *connection)
{
    long status = 0;
    curl_easy_getinfo(connection, CURLINFO_RESPONSE_CODE, &status);
    return status;
}

bool isRedirect(const Request &request)
{
    const long status = statusOf(request.connection);
    return request.hasLocation && (status == 301 || status == 302 || status == 303 || status == 307 || status == 308);
}

void writeHead(CURL *connection)
{
    const char *type = nullptr;
    curl_easy_getinfo(connection, CURLINFO_CONTENT_TYPE, &type);
    writeToStandardOutput(std::to_string(statusOf(connection)) + ' ' + (type ? type : "") + '\n');
}

/// Takes a line of an answer's head, as libcurl wants it. More than one head comes when there are interim answers.
std::size_t takeHeadLine(char *bytes, std::size_t, std::size_t count, void *data)
{
    auto &request = *static_cast<Request *>(data);
    request.watch.progress();
    request.headBytes += count;
    if (request.headBytes > maxHeadBytes) {
        return 0; // Which ends it.
    }
    constexpr std::string_view location = "location:";
    const std::string_view line(bytes, count);
    if (line.starts_with("HTTP/")) {
        request.hasLocation = false;
    } else if (count >= location.size() && curl_strnequal(bytes, location.data(), location.size()) != 0) {
        request.hasLocation = true;
    } else if ((line == "\r\n" || line == "\n") && !request.isHeadWritten && statusOf(request.connection) >= 200 &&
               !isRedirect(request)) {
        request.isHeadWritten = true;
        writeHead(request.connection);
    }
    return count;
}

/// Takes some of the body.
std::size_t takeBody(char *bytes, std::size_t, std::size_t count, void *data)
{
    auto &request = *static_cast<Request *>(data);
    request.watch.progress();
    if (request.isHeadWritten) {
        request.watch.pause(); // No more is asked of the server than is taken.
        writeToStandardOutput({bytes, count});
        request.watch.progress();
    }
    return count;
}

void configure(Request &request, const FetchOptions &options, char *error)
{
    CURL *const connection = request.connection;
    const auto set = [connection, &request](CURLoption option, auto value) {
        if (curl_easy_setopt(connection, option, value) != CURLE_OK) {
            request.watch.giveUp("libcurl lacks something");
        }
    };
    set(CURLOPT_ERRORBUFFER, error);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    set(CURLOPT_NOPROXY, ""); // That has been considered in the choice of the proxy.
    set(CURLOPT_USERAGENT, RequestHeaders::userAgent);
    set(CURLOPT_ACCEPT_ENCODING, RequestHeaders::acceptEncoding);
    // An empty header is one that libcurl would send and is not to.
    curl_slist *headers = curl_slist_append(nullptr, "Accept:");
    headers = curl_slist_append(headers, "Proxy-Connection:");
    headers = curl_slist_append(
        headers, ("Accept-Language: " + RequestHeaders::acceptLanguage(RequestHeaders::localeOfTheSession())).c_str());
    set(CURLOPT_HTTPHEADER, headers);
    set(CURLOPT_PROXYHEADER, curl_slist_append(nullptr, "Proxy-Connection:"));
    set(CURLOPT_HEADERFUNCTION, &takeHeadLine);
    set(CURLOPT_HEADERDATA, &request);
    set(CURLOPT_WRITEFUNCTION, &takeBody);
    set(CURLOPT_WRITEDATA, &request);
    if (!options.trustedCertificates.empty()) {
        set(CURLOPT_CAINFO, options.trustedCertificates.c_str());
        set(CURLOPT_CAPATH, static_cast<char *>(nullptr));
    }
}

/// One request and its answer; where it is redirected to, or empty.
std::string ask(Request &request, const std::string &address, bool isLoopback, const char *error)
{
    const std::optional<std::string> proxy = isLoopback ? std::string() : proxyFor(address);
    if (!proxy) {
        request.watch.giveUp("the proxy is of a kind that is not known");
    }
    curl_easy_setopt(request.connection, CURLOPT_PROXY, proxy->c_str());
    curl_easy_setopt(request.connection, CURLOPT_URL, address.c_str());
    const CURLcode result = curl_easy_perform(request.connection);
    if (result != CURLE_OK) {
        request.watch.giveUp(*error != '\0' ? error : curl_easy_strerror(result));
    }
    const char *next = nullptr;
    if (isRedirect(request)) {
        curl_easy_getinfo(request.connection, CURLINFO_REDIRECT_URL, &next);
        if (!next) {
            request.watch.giveUp("it is redirected to nowhere");
        }
    } else if (!request.isHeadWritten) {
        request.watch.giveUp("there was none");
    }
    return next ? next : "";
}

} // namespace

void fetchFeed(std::span<char *const> arguments, const FetchOptions &options)
{
    const std::optional<Arguments> given = argumentsFrom(arguments);
    if (!given) {
        std::fputs("usage: kivfetch [-v] ADDRESS MILLISECONDS\n", stderr);
        std::exit(usageError);
    }
    std::signal(SIGPIPE, SIG_IGN); // A server may hang up at any moment.
    auto &watch =
        *new FetchWatch({.silence = given->silence, .whole = options.maxDuration}, given->isTalkative); // For ever.
    curl_global_init(CURL_GLOBAL_DEFAULT);
    std::array<char, CURL_ERROR_SIZE> error{};
    Request request{.connection = curl_easy_init(), .watch = watch};
    configure(request, options, error.data());

    std::string address = given->address;
    bool mustBeSecure = false;
    for (int redirects = 0; !address.empty(); ++redirects) {
        const std::optional<WebAddress> where = webAddress(address);
        if (!where || (mustBeSecure && !where->isSecure) || redirects > maxRedirects) {
            watch.giveUp("it is at an address that is not asked");
        }
        mustBeSecure = where->isSecure;
        address = ask(request, address, where->isLoopback, error.data());
    }
    // At once: a thread that looks up a name may take minutes.
    std::_Exit(request.isHeadWritten ? EXIT_SUCCESS : EXIT_FAILURE);
}
