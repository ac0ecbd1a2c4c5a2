#include "tools/kivservice/DisplayArguments.h"

#include <algorithm>

namespace
{
constexpr std::uint16_t minSide = 32; // pixels; the least that X servers for remote desktops take

std::optional<std::uint16_t> side(const QString &text)
{
    const bool digitsOnly =
        !text.isEmpty() && std::ranges::all_of(text, [](QChar c) { return c >= u'0' && c <= u'9'; });
    bool fits = false;
    const std::uint16_t value = text.toUShort(&fits);
    return digitsOnly && fits && value >= minSide ? std::optional(value) : std::nullopt;
}

DisplayArguments refused(const QString &reason)
{
    return {std::nullopt, reason};
}
} // namespace

DisplayArguments parseDisplayArguments(const QStringList &arguments)
{
    const QString usage = QStringLiteral("usage: kivservice dspcmd set -w WIDTH -h HEIGHT -c");
    if (arguments.isEmpty() || arguments.front() != QLatin1String("set")) {
        return refused(usage);
    }
    std::optional<std::uint16_t> width;
    std::optional<std::uint16_t> height;
    bool current = false;
    for (auto it = arguments.begin() + 1; it != arguments.end(); ++it) {
        if (*it == QLatin1String("-c")) {
            current = true;
            continue;
        }
        const bool isWidth = *it == QLatin1String("-w");
        if ((!isWidth && *it != QLatin1String("-h")) || it + 1 == arguments.end()) {
            return refused(usage);
        }
        ++it;
        const auto value = side(*it);
        if (!value) {
            return refused(QStringLiteral("\"%1\" is no size from %2 to 65535 pixels").arg(*it).arg(minSide));
        }
        (isWidth ? width : height) = value;
    }
    if (!width || !height || !current) {
        return refused(usage);
    }
    return {DisplaySize{*width, *height}, {}};
}
