#include "platform/linux/desktop/FontDescription.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr qsizetype maxLineLength = 1000;
constexpr double minFontSize = 4;
constexpr double maxFontSize = 96;

enum class StyleKind { Slant, Weight, Stretch, Ignored };

struct StyleWord {
    const char *word; ///< In lower case and without hyphens.
    StyleKind kind;
    int value;
};

constexpr StyleWord styleWords[] = {
    {"normal", StyleKind::Ignored, 0},
    {"roman", StyleKind::Slant, false},
    {"italic", StyleKind::Slant, true},
    {"oblique", StyleKind::Slant, true},
    {"smallcaps", StyleKind::Ignored, 0},
    {"thin", StyleKind::Weight, QFont::Thin},
    {"ultralight", StyleKind::Weight, QFont::ExtraLight},
    {"extralight", StyleKind::Weight, QFont::ExtraLight},
    {"light", StyleKind::Weight, QFont::Light},
    {"semilight", StyleKind::Weight, QFont::Light},
    {"demilight", StyleKind::Weight, QFont::Light},
    {"book", StyleKind::Weight, QFont::Normal},
    {"regular", StyleKind::Weight, QFont::Normal},
    {"medium", StyleKind::Weight, QFont::Medium},
    {"semibold", StyleKind::Weight, QFont::DemiBold},
    {"demibold", StyleKind::Weight, QFont::DemiBold},
    {"bold", StyleKind::Weight, QFont::Bold},
    {"ultrabold", StyleKind::Weight, QFont::ExtraBold},
    {"extrabold", StyleKind::Weight, QFont::ExtraBold},
    {"heavy", StyleKind::Weight, QFont::Black},
    {"black", StyleKind::Weight, QFont::Black},
    {"ultracondensed", StyleKind::Stretch, QFont::UltraCondensed},
    {"extracondensed", StyleKind::Stretch, QFont::ExtraCondensed},
    {"condensed", StyleKind::Stretch, QFont::Condensed},
    {"semicondensed", StyleKind::Stretch, QFont::SemiCondensed},
    {"semiexpanded", StyleKind::Stretch, QFont::SemiExpanded},
    {"expanded", StyleKind::Stretch, QFont::Expanded},
    {"extraexpanded", StyleKind::Stretch, QFont::ExtraExpanded},
    {"ultraexpanded", StyleKind::Stretch, QFont::UltraExpanded},
};

bool takeSize(QString word, FontDescription &description)
{
    const bool inPixels = word.endsWith(QLatin1String("px"));
    if (inPixels) {
        word.chop(2);
    }
    bool isNumber = false;
    const double size = word.toDouble(&isNumber);
    if (!isNumber) {
        return false;
    }
    if (size >= minFontSize && size <= maxFontSize) {
        description.size = size;
        description.isSizeInPixels = inPixels;
    }
    return true;
}

bool takeStyle(QString word, FontDescription &description)
{
    word = word.toLower().remove(u'-');
    const auto *const found =
        std::ranges::find_if(styleWords, [&](const StyleWord &style) { return word == QLatin1String(style.word); });
    if (found == std::end(styleWords)) {
        return false;
    }
    switch (found->kind) {
    case StyleKind::Slant:
        description.isItalic = found->value != 0;
        break;
    case StyleKind::Weight:
        description.weight = static_cast<QFont::Weight>(found->value);
        break;
    case StyleKind::Stretch:
        description.stretch = found->value;
        break;
    case StyleKind::Ignored:
        break;
    }
    return true;
}

} // namespace

FontDescription readFontDescription(const QString &line)
{
    FontDescription description;
    QStringList words = line.left(maxLineLength).simplified().split(u' ', Qt::SkipEmptyParts);
    while (!words.isEmpty() && (words.last().startsWith(u'@') || words.last().startsWith(u'#'))) {
        words.removeLast(); // Variations and features.
    }
    if (!words.isEmpty() && takeSize(words.last(), description)) {
        words.removeLast();
    }
    while (!words.isEmpty() && takeStyle(words.last(), description)) {
        words.removeLast();
    }
    for (const QString &family : words.join(u' ').split(u',', Qt::SkipEmptyParts)) {
        if (const QString name = family.trimmed(); !name.isEmpty()) {
            description.families.append(name);
        }
    }
    return description;
}

QFont describedFont(const FontDescription &description, QFont font)
{
    if (!description.families.isEmpty()) {
        font.setFamilies(description.families);
    }
    if (description.size > 0 && description.isSizeInPixels) {
        font.setPixelSize(qRound(description.size));
    } else if (description.size > 0) {
        font.setPointSizeF(description.size);
    }
    font.setWeight(description.weight);
    font.setItalic(description.isItalic);
    font.setStretch(description.stretch);
    return font;
}
