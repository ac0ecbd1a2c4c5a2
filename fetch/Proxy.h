#pragma once

#include <optional>
#include <span>
#include <string>

/// The proxy for that address as the environment or the system wants it, in the words of libcurl; empty for none, and
/// nothing when one is wanted that cannot be used: to go past it would be against the user's will. May take its time: a
/// system can have a script decide, which lies on a server.
[[nodiscard]] std::optional<std::string> proxyFor(const std::string &address);

/// The first that can be used of a list as libproxy makes them: "http://...", "socks://...", "direct://";
/// empty for none, and nothing when there is no other that can be used.
[[nodiscard]] std::optional<std::string> usableProxy(std::span<const std::string> proxies);
