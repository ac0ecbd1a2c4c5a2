#include "tools/kivservice/ServiceLine.h"

#include <QList>

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

Line malformed(const QByteArray &line, const char *expected)
{
    return Malformed{QStringLiteral("\"%1\": expected %2").arg(QString::fromUtf8(line), QLatin1String(expected))};
}

Line parseFlags(const QByteArray &line, const QList<QByteArray> &words)
{
    const auto value = words.size() == 1 ? number(words.front()) : std::nullopt;
    return value ? Line(Flags{*value}) : malformed(line, "flags NUMBER");
}

Line parseActions(const QByteArray &line, const QList<QByteArray> &words)
{
    if (words == QList<QByteArray>{"none"}) {
        return Actions{};
    }
    Actions actions;
    for (const QByteArray &word : words) {
        const auto code = number(word);
        if (!code) {
            return malformed(line, "actions CODE ... or actions none");
        }
        actions.codes.push_back(*code);
    }
    return actions.codes.empty() ? malformed(line, "actions CODE ... or actions none") : Line(actions);
}
} // namespace

Line parse(const QByteArray &line)
{
    const QByteArray trimmed = line.trimmed();
    if (trimmed.isEmpty()) {
        return Nothing{};
    }
    QList<QByteArray> words = trimmed.simplified().split(' ');
    const QByteArray verb = words.takeFirst();
    if (verb == "flags") {
        return parseFlags(trimmed, words);
    }
    if (verb == "actions") {
        return parseActions(trimmed, words);
    }
    if (verb == "hint") {
        const QByteArray text = trimmed.mid(verb.size()).trimmed();
        return text.isEmpty() ? malformed(trimmed, "hint TEXT") : Line(Hint{text});
    }
    if (verb == "quit" && words.isEmpty()) {
        return Quit{};
    }
    return malformed(trimmed, "flags, actions, hint or quit");
}

} // namespace ServiceLine
