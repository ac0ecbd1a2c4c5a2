#include "notify/text/HtmlStyleWriter.h"

#include "notify/text/ReadableColours.h"

namespace
{

constexpr qsizetype maxFamilies = 6; ///< To look for one takes long.

} // namespace

QString HtmlStyleWriter::styleAttribute(const QString &css)
{
    return css.isEmpty() ? QString() : QStringLiteral(" style=\"") + css + u'"';
}

QString HtmlStyleWriter::blockAttributes(const HtmlStyle &style)
{
    QString attributes;
    if (!style.alignment.isEmpty()) {
        attributes += QStringLiteral(" align=\"%1\"").arg(style.alignment);
    }
    if (!style.direction.isEmpty()) {
        attributes += QStringLiteral(" dir=\"%1\"").arg(style.direction);
    }
    return attributes;
}

QString HtmlStyleWriter::characterStyle(const HtmlStyle &style, HtmlSurroundings &within)
{
    QString css;
    if (style.background.isValid() && isSeenToDiffer(style.background, within.background)) {
        within.background = style.background;
        css += QStringLiteral("background-color:%1;").arg(style.background.name());
    }
    QColor text = within.text;
    if (style.colour.isValid() && isReadable(style.colour, within.background)) {
        text = style.colour;
    } else if (!isReadable(text, within.background)) {
        text = readableOn(within.background);
    }
    if (text != within.text) {
        within.text = text;
        css += QStringLiteral("color:%1;").arg(text.name());
    }
    if (style.size > 0 && style.size != within.size) {
        within.size = style.size;
        css += QStringLiteral("font-size:%1px;").arg(style.size);
    }
    if (!style.family.isEmpty() && isKept(style.family)) {
        css += QStringLiteral("font-family:%1;").arg(style.family);
    }
    const auto add = [&css](const std::optional<bool> &wanted, const char *yes, const char *no) {
        css += wanted ? QLatin1String(*wanted ? yes : no) : QLatin1String();
    };
    add(style.isBold, "font-weight:bold;", "font-weight:normal;");
    add(style.isItalic, "font-style:italic;", "font-style:normal;");
    if (style.isUnderlined.value_or(false) || style.isStruckOut.value_or(false)) {
        css += QStringLiteral("text-decoration:%1 %2;")
                   .arg(style.isUnderlined.value_or(false) ? QLatin1String("underline") : QLatin1String(),
                        style.isStruckOut.value_or(false) ? QLatin1String("line-through") : QLatin1String());
    } else if (style.isUnderlined.has_value()) {
        css += QStringLiteral("text-decoration:none;");
    }
    return css;
}

bool HtmlStyleWriter::isKept(const QString &family)
{
    if (!m_families.contains(family) && m_families.size() < maxFamilies) {
        m_families.append(family);
    }
    return m_families.contains(family);
}
