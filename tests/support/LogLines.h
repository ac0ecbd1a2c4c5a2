#pragma once

#include <string>
#include <vector>

/// What this program says in our logging categories while this exists, debug lines included. One at a time.
class LogLines final
{
public:
    LogLines();
    ~LogLines();
    LogLines(const LogLines &) = delete;
    LogLines &operator=(const LogLines &) = delete;

    /// As they would stand on standard error: "kiv.item: pressed". Those since the last call; of warnings, too.
    [[nodiscard]] std::vector<std::string> take();
    /// Those of them that were no debug lines.
    [[nodiscard]] std::vector<std::string> takeWarnings();
};
