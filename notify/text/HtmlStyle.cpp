#include "notify/text/HtmlStyle.h"

#include "notify/text/HtmlTree.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

constexpr int minSize = 9;
constexpr int maxSize = 28;
/// Of the sizes that HTML counts from 1 to 7, and of the words from "xx-small" to "xx-large" with one before them.
constexpr std::array<int, 7> sizes = {9, 10, 12, 14, 18, 22, 28};
constexpr int usualSize = 3;
constexpr std::array<int, 6> sizesOfHeadings = {18, 16, 14, 13, 12, 12};

int bounded(double size)
{
    return static_cast<int>(std::lround(std::clamp(size, double{minSize}, double{maxSize})));
}

int numberedSize(int number)
{
    return sizes.at(static_cast<std::size_t>(std::clamp(number, 1, 7) - 1));
}

/// "3", or counted from the usual size: "+1", "-2".
int fontSize(const QString &text)
{
    bool isNumber = false;
    const int number = text.trimmed().toInt(&isNumber);
    const bool isRelative = text.trimmed().startsWith(u'+') || text.trimmed().startsWith(u'-');
    return isNumber ? numberedSize(isRelative ? usualSize + std::clamp(number, -6, 6) : number) : 0;
}

int cssSize(const QString &text, int size)
{
    static const std::array words = {u"xx-small", u"x-small", u"small", u"medium", u"large", u"x-large", u"xx-large"};
    static constexpr std::array<int, 7> sizesOfWords = {9, 10, 11, 12, 14, 18, 22};
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (text == QStringView(words.at(i))) {
            return sizesOfWords.at(i);
        }
    }
    if (text == u"smaller" || text == u"larger") {
        return bounded(text == u"smaller" ? size / 1.2 : size * 1.2);
    }
    static const QRegularExpression form(QStringLiteral("^([0-9]{0,4}(?:\\.[0-9]{1,4})?)(px|pt|em|rem|%)$"));
    const QRegularExpressionMatch match = form.match(text);
    bool isNumber = false;
    const double number = match.captured(1).toDouble(&isNumber);
    if (!isNumber) {
        return 0;
    }
    const QString unit = match.captured(2);
    if (unit == u"pt") {
        return bounded(number * 96 / 72);
    }
    if (unit == u"em") {
        return bounded(number * size);
    }
    if (unit == u"rem") {
        return bounded(number * numberedSize(usualSize));
    }
    return bounded(unit == u"%" ? number * size / 100 : number);
}

/// "0", "0px", "0.0em".
bool isZero(const QString &value)
{
    const auto isOtherDigit = [](QChar c) { return c >= u'1' && c <= u'9'; };
    return value.startsWith(u'0') && std::ranges::none_of(value, isOtherDigit);
}

QString harmlessFamily(QString text)
{
    static const QRegularExpression harmful(QStringLiteral("[^A-Za-z0-9 ,-]"));
    constexpr qsizetype maxLength = 80;
    return text.remove(harmful).left(maxLength).simplified();
}

QString knownAlignment(const QString &text)
{
    const QString word = text.trimmed().toLower();
    if (word == u"middle") {
        return QStringLiteral("center");
    }
    return word == u"left" || word == u"right" || word == u"center" || word == u"justify" ? word : QString();
}

/// "50%".
int percent(const QString &text)
{
    bool isNumber = false;
    const double number = text.trimmed().chopped(text.trimmed().endsWith(u'%') ? 1 : 0).toDouble(&isNumber);
    const bool isPercent = isNumber && text.trimmed().endsWith(u'%') && number >= 1 && number <= 100;
    return isPercent ? static_cast<int>(number) : 0;
}

/// The first word that is a colour, as in "1px solid #ccc".
QColor colourAmong(const QString &words)
{
    for (const QString &word : words.split(u' ', Qt::SkipEmptyParts)) {
        if (const QColor colour = htmlColour(word); colour.isValid()) {
            return colour;
        }
    }
    return {};
}

void apply(const QString &property, const QString &value, int size, HtmlStyle &style)
{
    if (property == u"color") {
        style.colour = htmlColour(value);
    } else if (property == u"background" || property == u"background-color") {
        style.background = value.startsWith(u"rgb") ? htmlColour(value) : colourAmong(value);
    } else if (property == u"border" || property == u"border-color") {
        const bool isNone = value.startsWith(u'0') || value.contains(u"none");
        const QColor colour = value.contains(u"rgb") ? QColor(Qt::gray) : colourAmong(value);
        style.border = isNone ? QColor() : (colour.isValid() ? colour : QColor(Qt::gray));
    } else if (property == u"font-size") {
        style.isSizeless = isZero(value);
        style.size = style.isSizeless ? 0 : cssSize(value, size);
    } else if (property == u"font-family") {
        style.family = harmlessFamily(value);
    } else if (property == u"font-weight") {
        style.isBold = value.startsWith(u"bold") || value.toInt() >= 600;
    } else if (property == u"font-style") {
        style.isItalic = value == u"italic" || value == u"oblique";
    } else if (property.startsWith(u"text-decoration")) {
        style.isUnderlined = value.contains(u"underline");
        style.isStruckOut = value.contains(u"line-through");
    } else if (property == u"text-align") {
        style.alignment = knownAlignment(value);
    } else if (property == u"direction") {
        style.direction = value == u"rtl" || value == u"ltr" ? value : QString();
    } else if (property == u"width") {
        style.widthPercent = percent(value);
    } else if (property == u"display" || property == u"visibility" || property == u"mso-hide") {
        style.isHidden = style.isHidden || value == u"none" || value == u"hidden" || value == u"all";
    } else if (property == u"opacity" || property == u"max-height") {
        style.isHidden = style.isHidden || isZero(value);
    }
}

/// What an element asks for by its name alone; its attributes go before that.
void applyName(GumboTag tag, int size, HtmlStyle &style)
{
    const auto ask = [](std::optional<bool> &what) { what = what.value_or(true); };
    const auto askForSize = [&style](double wanted) { style.size = style.size > 0 ? style.size : bounded(wanted); };
    switch (tag) {
    case GUMBO_TAG_B:
    case GUMBO_TAG_STRONG:
    case GUMBO_TAG_DT:
    case GUMBO_TAG_TH:
        ask(style.isBold);
        break;
    case GUMBO_TAG_I:
    case GUMBO_TAG_EM:
    case GUMBO_TAG_CITE:
    case GUMBO_TAG_VAR:
    case GUMBO_TAG_DFN:
        ask(style.isItalic);
        break;
    case GUMBO_TAG_U:
    case GUMBO_TAG_INS:
        ask(style.isUnderlined);
        break;
    case GUMBO_TAG_S:
    case GUMBO_TAG_STRIKE:
    case GUMBO_TAG_DEL:
        ask(style.isStruckOut);
        break;
    case GUMBO_TAG_TT:
    case GUMBO_TAG_CODE:
    case GUMBO_TAG_KBD:
    case GUMBO_TAG_SAMP:
    case GUMBO_TAG_PRE:
        style.family = QStringLiteral("monospace");
        break;
    case GUMBO_TAG_BIG:
        askForSize(size * 1.2);
        break;
    case GUMBO_TAG_SMALL:
    case GUMBO_TAG_SUB:
    case GUMBO_TAG_SUP:
        askForSize(size / 1.2);
        break;
    case GUMBO_TAG_MARK:
        style.background = style.background.isValid() ? style.background : QColor(Qt::yellow);
        break;
    case GUMBO_TAG_CENTER:
        style.alignment = style.alignment.isEmpty() ? QStringLiteral("center") : style.alignment;
        break;
    case GUMBO_TAG_H1:
    case GUMBO_TAG_H2:
    case GUMBO_TAG_H3:
    case GUMBO_TAG_H4:
    case GUMBO_TAG_H5:
    case GUMBO_TAG_H6:
        ask(style.isBold);
        askForSize(sizesOfHeadings.at(static_cast<std::size_t>(tag) - GUMBO_TAG_H1));
        break;
    default:
        break;
    }
}

} // namespace

HtmlStyle htmlStyle(const GumboNode &element, int size)
{
    HtmlStyle style;
    const auto attribute = [&element](const char *name) { return HtmlNode::attribute(element, name); };
    style.alignment = knownAlignment(attribute("align"));
    style.background = htmlColour(attribute("bgcolor"));
    style.widthPercent = percent(attribute("width"));
    style.isHidden = !attribute("hidden").isNull();
    const QString direction = attribute("dir").toLower();
    style.direction = direction == u"rtl" || direction == u"ltr" ? direction : QString();
    if (element.v.element.tag == GUMBO_TAG_FONT) {
        style.colour = htmlColour(attribute("color"));
        style.family = harmlessFamily(attribute("face"));
        style.size = fontSize(attribute("size"));
    }
    for (const QString &declaration : attribute("style").toLower().split(u';', Qt::SkipEmptyParts)) {
        const qsizetype colon = declaration.indexOf(u':');
        if (colon > 0) {
            QString value = declaration.mid(colon + 1).trimmed();
            const qsizetype important = value.indexOf(u'!');
            value = important < 0 ? value : value.first(important).trimmed();
            apply(declaration.first(colon).trimmed(), value, size, style);
        }
    }
    applyName(element.v.element.tag, size, style);
    return style;
}

QColor htmlColour(QStringView text)
{
    static const QRegularExpression form(QStringLiteral(
        "^(?:#?([0-9a-f]{6})|(#[0-9a-f]{3})|([a-z]{3,20})|"
        "rgba?\\(\\s*([0-9]{1,3})\\s*,\\s*([0-9]{1,3})\\s*,\\s*([0-9]{1,3})\\s*(?:,\\s*([0-9.]{1,5})\\s*)?\\))$"));
    const QRegularExpressionMatch match = form.match(text.trimmed().toString().toLower());
    if (!match.hasMatch()) {
        return {};
    }
    if (!match.captured(1).isEmpty()) {
        return QColor::fromString(QString(u'#' + match.captured(1)));
    }
    if (!match.captured(2).isEmpty()) {
        return QColor::fromString(match.captured(2));
    }
    if (const QString name = match.captured(3); !name.isEmpty()) {
        const QColor colour = name == u"transparent" ? QColor() : QColor::fromString(name);
        return colour.isValid() ? colour : QColor();
    }
    const bool isTransparent = !match.captured(7).isEmpty() && match.captured(7).toDouble() == 0;
    const auto part = [&match](int index) { return std::min(255, match.captured(index).toInt()); };
    return isTransparent ? QColor() : QColor(part(4), part(5), part(6));
}
