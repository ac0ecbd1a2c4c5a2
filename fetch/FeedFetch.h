#pragma once

#include <QStringList>

#include <chrono>

/// kivfetch ADDRESS MILLISECONDS: sends one GET request and writes the answer to standard output, as it comes in.
///
/// First a line with the status and, after a blank, the content type; then the body, whatever the status. Redirects are
/// followed, but never from https to http, and are not reported. The proxy is that of the environment or the system,
/// and the certificates are those that the system trusts. Neither cookies, stored credentials nor caches are used.
/// Gives up when there is no progress for so many milliseconds, and when standard input, held open by who asks, comes
/// to its end; and in any case after `maxDuration`, so that it has always gone long before the next request, a day
/// later, however slowly a server sends.
///
/// Ends the process. Its status: 0 when the answer is whole, 1 when it is not, 2, with a line on standard error, for
/// other arguments. Needs the application object, whose loop it runs.
[[noreturn]] void fetchFeed(const QStringList &arguments,
                            std::chrono::milliseconds maxDuration = std::chrono::minutes(10));
