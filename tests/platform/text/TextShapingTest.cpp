#include "platform/text/TextShaping.h"

#include "platform/text/SystemFont.h"

#include <QApplication>
#include <QGlyphRun>
#include <QRawFont>
#include <QTextLayout>

#include <gtest/gtest.h>

#include <map>

namespace
{

/// Which picture stands where, to the pixel.
std::map<std::pair<int, quint32>, int> pictures(const QString &text, const QFont &font)
{
    QTextLayout layout(text, font);
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    std::map<std::pair<int, quint32>, int> found;
    for (const QGlyphRun &run : layout.glyphRuns()) {
        const QList<quint32> glyphs = run.glyphIndexes();
        const QList<QPointF> positions = run.positions();
        for (qsizetype i = 0; i < glyphs.size(); ++i) {
            ++found[{qRound(positions[i].x()), glyphs[i]}];
        }
    }
    return found;
}

QFont fontWith(QFont::StyleStrategy strategy)
{
    QFont font = QApplication::font();
    font.setPixelSize(24);
    font.setStyleStrategy(strategy);
    return font;
}

} // namespace

TEST(TextShaping, IsNeededWhereLettersAreFormedOrJoinedByTheirNeighbours)
{
    for (const char16_t *text :
         {u"السلام", u"שָׁלוֹם", u"हिन्दी", u"กำลัง", u"བོད", u"한", u"e\u0301", u"и\u0306", u"α\u0313", u"a\u200Db",
          u"a\u200Fb", u"\u00AD", u"Text, then عليكم", u"👩‍💻", u"日本", u"\uFE0F"}) {
        EXPECT_TRUE(needsShaping(QStringView(text))) << QString::fromUtf16(text).toStdString();
    }
}

TEST(TextShaping, IsNotNeededForLatinGreekAndCyrillic)
{
    for (const char16_t *text : {u"", u"Do Not Remind Me Later", u"naïve façade – “10 €” …", u"Ελληνικά ή",
                                 u"Русский ё й", u"Tiếng Việt", u"1024 × 768 © 2026\n\ttab"}) {
        EXPECT_FALSE(needsShaping(QStringView(text))) << QString::fromUtf16(text).toStdString();
    }
}

TEST(TextShaping, LeftOutChangesNoPictureOfACharacterThatIsSaidNotToNeedIt)
{
    int tried = 0;
    for (int code = 0x20; code < 0x10000; ++code) {
        const QString text{QChar(code)};
        if (!needsShaping(text) && QRawFont::fromFont(fontWith(QFont::PreferDefault)).supportsCharacter(QChar(code))) {
            ++tried;
            EXPECT_EQ(pictures(text, fontWith(QFont::PreferNoShaping)), pictures(text, fontWith(QFont::PreferDefault)))
                << std::hex << code;
        }
    }
    EXPECT_GT(tried, 1000);
}

TEST(SystemFont, ShapesTheTextsThatNeedIt)
{
    for (const char16_t *text : {u"السلام عليكم", u"e\u0301 и\u0306", u"α\u0313\u0301", u"He said: بِسْمِ"}) {
        const QString outside = QString::fromUtf16(text);
        const auto right = pictures(outside, fontWith(QFont::PreferDefault));
        ASSERT_NE(pictures(outside, fontWith(QFont::PreferNoShaping)), right) << "this text cannot tell";
        EXPECT_EQ(pictures(outside, fontFor(outside, fontWith(QFont::PreferNoShaping))), right)
            << outside.toStdString();
    }
}

TEST(SystemFont, DoesNotShapeTheApplicationsOwnTexts)
{
    const QFont before = QApplication::font();
    setApplicationFont(before);
    EXPECT_EQ(QApplication::font().styleStrategy(), QFont::PreferNoShaping);
    EXPECT_EQ(QApplication::font().family(), before.family());
    QApplication::setFont(before);
    EXPECT_EQ(systemFont(QFont::Bold, u"Remind Me Later").styleStrategy(), QFont::PreferNoShaping);
    EXPECT_EQ(systemFont(QFont::Bold, u"عليكم").styleStrategy(), QFont::PreferDefault);
}

TEST(SystemFont, DoesNotHintItsBoldFace)
{
    EXPECT_EQ(systemFont(QFont::Bold, u"Title").hintingPreference(), QFont::PreferNoHinting);
    EXPECT_EQ(systemFont(QFont::Bold, u"Title").weight(), QFont::Bold);
    EXPECT_EQ(systemFont(QFont::Normal, u"Text").hintingPreference(), QApplication::font().hintingPreference());
}
