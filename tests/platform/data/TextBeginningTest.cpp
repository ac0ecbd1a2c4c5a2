#include "platform/data/TextBeginning.h"

#include <gtest/gtest.h>

TEST(TextBeginning, IsTheTextItselfWhenThatIsShort)
{
    EXPECT_EQ(beginningOf(u"", 0), u"");
    EXPECT_EQ(beginningOf(u"", 3), u"");
    EXPECT_EQ(beginningOf(u"abc", 3), u"abc");
    EXPECT_EQ(beginningOf(u"abc", 4), u"abc");
}

TEST(TextBeginning, HasAsManyUnitsAsItMay)
{
    EXPECT_EQ(beginningOf(u"abc", 2), u"ab");
    EXPECT_EQ(beginningOf(u"abc", 0), u"");
}

TEST(TextBeginning, EndsBeforeAPairThatHasNoRoom)
{
    EXPECT_EQ(beginningOf(u"a\U0001F600b", 2), u"a");
    EXPECT_EQ(beginningOf(u"a\U0001F600b", 3), u"a\U0001F600");
    EXPECT_EQ(beginningOf(u"\U0001F600", 1), u"");
    const QChar half(0xD83D);
    EXPECT_EQ(beginningOf(QString(3, half), 2), QString(2, half)) << "halves that are no pairs are left to others";
}
