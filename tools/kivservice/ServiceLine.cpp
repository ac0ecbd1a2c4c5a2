#include "tools/kivservice/ServiceLine.h"

#include <QList>
#include <QStringList>

#include <optional>

namespace ServiceLine
{
namespace
{
std::optional<std::uint32_t> number(const QByteArray &word)
{
    bool ok = false;
    const std::uint32_t value = word.toUInt(&ok, 10);
    // QByteArray::toUInt takes a sign, too.
    return ok && word.front() != '+' ? std::optional(value) : std::nullopt;
}

/// A kind of line: its first word, what is to follow, and who reads that. Nothing when it is something else.
struct Form {
    const char *verb;
    const char *usage;
    std::optional<Line> (*read)(const QByteArray &rest);
};

QList<QByteArray> wordsOf(const QByteArray &rest)
{
    return rest.isEmpty() ? QList<QByteArray>() : rest.simplified().split(' ');
}

std::optional<Line> readFlags(const QByteArray &rest)
{
    const auto value = number(rest);
    return value ? std::optional<Line>(Flags{*value}) : std::nullopt;
}

std::optional<Line> readActions(const QByteArray &rest)
{
    Actions actions;
    if (rest == "none") {
        return actions;
    }
    for (const QByteArray &word : wordsOf(rest)) {
        const auto code = number(word);
        if (!code) {
            return std::nullopt;
        }
        actions.codes.push_back(*code);
    }
    return actions.codes.empty() ? std::nullopt : std::optional<Line>(actions);
}

std::optional<Line> readHint(const QByteArray &rest)
{
    return rest.isEmpty() ? std::nullopt : std::optional<Line>(Hint{rest});
}

std::optional<Line> readQuit(const QByteArray &rest)
{
    return rest.isEmpty() ? std::optional<Line>(Quit{}) : std::nullopt;
}

constexpr Form forms[] = {
    {"flags", "flags NUMBER", readFlags},
    {"actions", "actions CODE ... or actions none", readActions},
    {"hint", "hint TEXT", readHint},
    {"quit", "quit", readQuit},
};

Line malformed(const QByteArray &line, const QString &expected)
{
    return Malformed{QStringLiteral("\"%1\": expected %2").arg(QString::fromUtf8(line), expected)};
}

/// "a, b or c"
QString verbs()
{
    QStringList all;
    for (const Form &form : forms) {
        all += QLatin1String(form.verb);
    }
    const QString last = all.takeLast();
    return all.join(QStringLiteral(", ")) + QStringLiteral(" or ") + last;
}
} // namespace

Line parse(const QByteArray &line)
{
    const QByteArray trimmed = line.trimmed();
    if (trimmed.isEmpty()) {
        return Nothing{};
    }
    const QByteArray verb = trimmed.simplified().split(' ').first();
    const QByteArray rest = trimmed.mid(verb.size()).trimmed();
    for (const Form &form : forms) {
        if (verb == form.verb) {
            return form.read(rest).value_or(malformed(trimmed, QLatin1String(form.usage)));
        }
    }
    return malformed(trimmed, verbs());
}

} // namespace ServiceLine
