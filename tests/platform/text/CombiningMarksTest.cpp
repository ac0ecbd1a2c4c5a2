#include "platform/text/CombiningMarks.h"

#include <gtest/gtest.h>

namespace
{

const QString acute = QStringLiteral("\u0301");
/// Of music, and outside the first plane.
const QString stem = QStringLiteral("\U0001D165");
const QString joiner = QStringLiteral("\u200D");
const QString tag = QStringLiteral("\U000E0067");

TEST(CombiningMarks, KeepsTextsAsTheyAre)
{
    for (const QString &text :
         {QStringLiteral(""), QStringLiteral("Gr\u00FC\u00DFe \U0001F600\n"), QStringLiteral("e\u0301a\u0300\u0323"),
          QString(u'a' + acute.repeated(32)), QString(u'a' + stem.repeated(32)), QString((u'a' + acute).repeated(100)),
          QStringLiteral("\U0001F469\u200D\U0001F4BB \U0001F3F4\U000E0067\U000E0062\U000E0065\U000E007F"),
          QString(QChar(0xD834)), QString(QChar(0xDD65) + QStringLiteral("a") + QChar(0xD834))}) {
        EXPECT_EQ(withoutPiledUpMarks(text), text) << text.toStdString();
    }
}

TEST(CombiningMarks, DropsThoseBehindThirtyTwoInARow)
{
    for (const QString &mark : {acute, stem, joiner, tag}) {
        const QString allowed = u'a' + mark.repeated(32);
        EXPECT_EQ(withoutPiledUpMarks(allowed + mark), allowed);
        EXPECT_EQ(withoutPiledUpMarks(allowed + mark.repeated(1000) + allowed + mark + u'b'), allowed + allowed + u'b');
    }
    EXPECT_EQ(withoutPiledUpMarks(acute.repeated(20) + stem.repeated(20)), acute.repeated(20) + stem.repeated(12));
}

} // namespace
