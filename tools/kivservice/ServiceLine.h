#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <variant>
#include <vector>

/// What a line on the reference service's standard input asks for.
namespace ServiceLine
{

struct Flags {
    std::uint32_t flags;
};
struct Actions {
    std::vector<std::uint32_t> codes; ///< Empty: none is allowed.
};
struct Hint {
    QByteArray text; ///< UTF-8, not empty.
};
struct Quit {
};
struct Nothing { ///< A blank line.
};
struct Malformed {
    QString reason;
};

/// A kind that is added here must be readable (ServiceLine.cpp) and, if it is for the agent, sendable
/// (AttachedService::send); without the latter the command does not compile.
using Line = std::variant<Flags, Actions, Hint, Quit, Nothing, Malformed>;

/// Reads "flags 6", "actions 32793 32796", "actions none", "hint TEXT" or "quit", without the line's end.
[[nodiscard]] Line parse(const QByteArray &line);

} // namespace ServiceLine
