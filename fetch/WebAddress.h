#pragma once

#include <optional>
#include <string>

/// What matters of a http or https address.
struct WebAddress final {
    bool isSecure = false;
    /// Whether it is of this machine, by a name or number that says so.
    bool isLoopback = false;
};

/// Nothing for another text.
[[nodiscard]] std::optional<WebAddress> webAddress(const std::string &text);
