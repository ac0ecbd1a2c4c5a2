#include "notify/feed/FeedDate.h"

#include "platform/data/UtcTime.h"

#include <gtest/gtest.h>

namespace
{

QDateTime utc(int year, int month, int day, int hour)
{
    return {QDate(year, month, day), QTime(hour, 0), inUtc};
}

TEST(FeedDate, IsMidnightInEasternStandardTimeSummerAndWinter)
{
    EXPECT_EQ(dateFromString(QStringLiteral("01/31/2011")), utc(2011, 1, 31, 5));
    EXPECT_EQ(dateFromString(QStringLiteral("07/04/2011")), utc(2011, 7, 4, 5));
    EXPECT_EQ(dateFromString(QStringLiteral("12/31/9999")), utc(9999, 12, 31, 5));
    EXPECT_EQ(dateFromString(QStringLiteral("02/29/2012")), utc(2012, 2, 29, 5));
    EXPECT_EQ(dateFromString(QStringLiteral("01/01/0001")), utc(1, 1, 1, 5));
}

TEST(FeedDate, MayLeaveOutLeadingZerosOfMonthAndDay)
{
    EXPECT_EQ(dateFromString(QStringLiteral("5/6/2011")), utc(2011, 5, 6, 5));
    EXPECT_EQ(dateFromString(QStringLiteral("05/6/2011")), utc(2011, 5, 6, 5));
}

TEST(FeedDate, IsNilForAnythingElse)
{
    for (const char *text :
         {"", "any", "2011-05-06", "05/06/11", "13/01/2011", "00/10/2011", "02/29/2011", "05/32/2011", "05/06/0000",
          "05/06/20111", " 05/06/2011", "05/06/2011\n", "05/06/2011 00:00", "-5/06/2011", "05//2011", "005/06/2011",
          "05.06.2011", "\xD9\xA0\xD9\xA5/06/2011"}) {
        EXPECT_FALSE(dateFromString(QString::fromUtf8(text)).isValid()) << text;
    }
    EXPECT_FALSE(dateFromString(QString()).isValid());
}

} // namespace
