#pragma once

#include <span>
#include <string>

/// The proxy for that address as the environment or the system wants it, in the words of libcurl; empty for none. May
/// take its time: a system can have a script decide, which lies on a server.
[[nodiscard]] std::string proxyFor(const std::string &address);

/// The first that can be used of a list as libproxy makes them: "http://...", "socks://...", "direct://".
[[nodiscard]] std::string usableProxy(std::span<const std::string> proxies);
