#include "platform/linux/desktop/FontDescription.h"

#include <QApplication>

#include <gtest/gtest.h>

namespace
{

using namespace Qt::StringLiterals;

struct FontCase {
    const char *line;
    FontDescription read;
};

} // namespace

TEST(FontDescription, IsReadAsDesktopsWriteIt)
{
    const FontCase cases[] = {
        {"Cantarell 11", {.families = {u"Cantarell"_s}, .size = 11}},
        {"Sans Bold 10", {.families = {u"Sans"_s}, .weight = QFont::Bold, .size = 10}},
        {"Noto Sans, DejaVu Sans Semi-Bold Italic 10.5",
         {.families = {u"Noto Sans"_s, u"DejaVu Sans"_s}, .weight = QFont::DemiBold, .isItalic = true, .size = 10.5}},
        {"Noto Sans,  10", {.families = {u"Noto Sans"_s}, .size = 10}},
        {"DejaVu Sans Mono 12px", {.families = {u"DejaVu Sans Mono"_s}, .size = 12, .isSizeInPixels = true}},
        {"Ubuntu Condensed 11", {.families = {u"Ubuntu"_s}, .stretch = QFont::Condensed, .size = 11}},
        {"Inter Variable 11 @wght=200,slnt=5 #tnum=1", {.families = {u"Inter Variable"_s}, .size = 11}},
        {"Bitstream Charter OBLIQUE ultra-light",
         {.families = {u"Bitstream Charter"_s}, .weight = QFont::ExtraLight, .isItalic = true}},
        {"Droid Sans Regular", {.families = {u"Droid Sans"_s}}},
        {"  Sans   9  ", {.families = {u"Sans"_s}, .size = 9}},
        {"Source 3 9", {.families = {u"Source 3"_s}, .size = 9}},
        {"9", {.size = 9}},
        {"Bold", {.weight = QFont::Bold}},
        {"", {}},
        {" , ,", {}},
        {"Sans 3.9", {.families = {u"Sans"_s}}},
        {"Sans 4", {.families = {u"Sans"_s}, .size = 4}},
        {"Sans 96", {.families = {u"Sans"_s}, .size = 96}},
        {"Sans 97", {.families = {u"Sans"_s}}},
        {"Sans -10", {.families = {u"Sans"_s}}},
        {"Sans nan", {.families = {u"Sans"_s}}},
        {"Sans inf", {.families = {u"Sans"_s}}},
        {"Sans 1e300", {.families = {u"Sans"_s}}},
        {"Sans 10 pt", {.families = {u"Sans 10 pt"_s}}},
    };
    for (const FontCase &each : cases) {
        EXPECT_EQ(readFontDescription(QString::fromUtf8(each.line)), each.read) << each.line;
    }
}

TEST(FontDescription, IsReadNoFurtherThanAThousandCharacters)
{
    const QString line = QString(1000, u'x') + QStringLiteral(" Bold 10");
    EXPECT_EQ(readFontDescription(line), (FontDescription{.families = {QString(1000, u'x')}}));
}

TEST(FontDescription, LeavesToTheFontWhatItDoesNotSay)
{
    QFont font = QApplication::font();
    font.setPointSizeF(8);
    const QFont described = describedFont(readFontDescription(QStringLiteral("Serif Bold")), font);
    EXPECT_EQ(described.families(), QStringList{QStringLiteral("Serif")});
    EXPECT_EQ(described.pointSizeF(), 8);
    EXPECT_EQ(described.weight(), QFont::Bold);
    const QFont sized = describedFont(readFontDescription(QStringLiteral("14px")), font);
    EXPECT_EQ(sized.families(), font.families());
    EXPECT_EQ(sized.pixelSize(), 14);
    EXPECT_EQ(describedFont(readFontDescription(QStringLiteral("10.5")), font).pointSizeF(), 10.5);
}
