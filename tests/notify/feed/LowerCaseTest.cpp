#include "notify/feed/LowerCase.h"

#include "tests/support/ProcessorTime.h"

#include <QString>

#include <gtest/gtest.h>

TEST(LowerCase, IsThatOfEachCharacter)
{
    EXPECT_EQ(lowerCase(u"Kivune 3.2-RC"), QStringLiteral("kivune 3.2-rc"));
    EXPECT_EQ(lowerCase(u"\u00C9T\u00C9"), QStringLiteral("\u00E9t\u00E9"));
    EXPECT_EQ(lowerCase(u"\u0130"), QStringLiteral("i\u0307"));
}

TEST(LowerCase, OfNothingIsEmptyAndNotNil)
{
    EXPECT_TRUE(lowerCase(u"").isEmpty());
    EXPECT_FALSE(lowerCase(u"").isNull());
    EXPECT_FALSE(lowerCase(QStringView()).isNull());
}

TEST(LowerCase, IsTheSameInTheMidstOfALongText)
{
    for (const char32_t *text : {U"\U00010400", U"x\U00010400", U"\u0130\u00C9\u03A3", U"A"}) {
        const QString repeated = QString::fromUcs4(text).repeated(3000);
        EXPECT_EQ(lowerCase(repeated), repeated.toLower()) << repeated.left(3).toStdString();
    }
}

TEST(LowerCase, OfCharactersThatBecomeTwoTakesTimeInProportionToTheText)
{
    const auto timeFor = [](qsizetype length) {
        const QString text(length, QChar(0x130));
        const auto before = processorTimeOfThisThread();
        EXPECT_EQ(lowerCase(text).size(), 2 * length);
        return processorTimeOfThisThread() - before;
    };
    timeFor(1000); // The first time costs more.
    EXPECT_LT(timeFor(400'000), 60 * timeFor(20'000)) << "the square would be 400 times";
}
