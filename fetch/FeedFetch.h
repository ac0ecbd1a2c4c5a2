#pragma once

#include <chrono>
#include <span>
#include <string>

struct FetchOptions final {
    /// However slowly a server sends, the request has always gone long before the next one, a day later.
    std::chrono::milliseconds maxDuration = std::chrono::minutes(10);
    /// A PEM file with the certificates to trust in place of the system's; empty for the system's.
    std::string trustedCertificates = {};
};

/// kivfetch [-v] ADDRESS MILLISECONDS: sends one GET request and writes the answer to standard output, as it comes in.
///
/// First a line with the status and, after a blank, the content type; then the body, whatever the status. Interim
/// answers (1xx) are passed over. Redirects are followed, but never from https to http, and are not reported. The proxy
/// is that of the environment or the system, and the certificates are those that the system trusts. Neither cookies,
/// stored credentials nor caches are used. Gives up when there is no progress for so many milliseconds, and when
/// standard input, held open by who asks, comes to its end; and in any case after `maxDuration`.
///
/// Ends the process. Its status: 0 when the answer is whole, 1 when it is not, and with -v a line on standard error
/// says why; 2, with a line on standard error, for other arguments. `arguments` begin with the program's name.
[[noreturn]] void fetchFeed(std::span<char *const> arguments, const FetchOptions &options = {});
