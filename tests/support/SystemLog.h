#pragma once

#include <string>
#include <vector>

/// What this program would have written to the system log: while it is linked in, syslog() only records here.
namespace SystemLog
{

struct Entry {
    int priority;
    std::string text;

    [[nodiscard]] bool operator==(const Entry &) const = default;
};

/// The entries since the last call.
[[nodiscard]] std::vector<Entry> take();

} // namespace SystemLog
