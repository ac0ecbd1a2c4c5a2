#include "notify/feed/LongStretches.h"

#include <gtest/gtest.h>

namespace
{

QString shortened(QString text, qsizetype maxLength)
{
    shortenLongStretches(text, maxLength);
    return text;
}

TEST(LongStretches, LoseWhatIsBeyondTheLongestLength)
{
    EXPECT_EQ(shortened(QStringLiteral("<a>QUJD+/8=</a>"), 4), QStringLiteral("<a>QUJD</a>"));
    EXPECT_EQ(shortened(QStringLiteral("<a>QU\r\nJD</a>"), 5), QStringLiteral("<a>QU\r\nJ</a>"));
    EXPECT_EQ(shortened(QStringLiteral("<a>QUJD</a><b>REVG</b>"), 2), QStringLiteral("<a>QU</a><b>RE</b>"));
}

TEST(LongStretches, LeaveEverythingElseAsItIs)
{
    for (const char *text : {"", "<a>QUJD</a>", "<a b='QUJD'/>", "<!-- QU -->", "<a>\xC3\xA9\xC3\xA9-----</a>"}) {
        EXPECT_EQ(shortened(QString::fromUtf8(text), 4), QString::fromUtf8(text));
    }
}

} // namespace
