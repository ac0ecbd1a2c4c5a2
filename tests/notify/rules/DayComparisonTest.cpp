#include "notify/rules/DayComparison.h"

#include "notify/record/DistantFuture.h"
#include "tests/notify/rules/TimeZone.h"

#include <gtest/gtest.h>

namespace
{

QDateTime instant(const char *text)
{
    return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate);
}

struct Pair {
    const char *zone;
    const char *a;
    const char *b;
    int result;
};

constexpr Pair pairs[] = {
    {TimeZone::utc, "2024-03-01T00:00:00Z", "2024-03-01T23:59:59Z", 0},
    {TimeZone::utc, "2024-02-29T23:59:59Z", "2024-03-01T00:00:00Z", -1},
    {TimeZone::utc, "2024-03-01T00:00:00Z", "2024-02-29T23:59:59Z", 1},
    {TimeZone::utc, "1969-12-31T23:59:59Z", "1970-01-01T00:00:00Z", -1},
    {TimeZone::utc, "2024-01-01T00:00:00Z", "2023-12-31T23:59:59Z", 1},
    {TimeZone::utc, "2024-01-01T00:30:00+02:00", "2023-12-31T12:00:00Z", 0},
    // The same instants on other days elsewhere.
    {TimeZone::berlin, "2024-01-14T22:59:59Z", "2024-01-14T23:00:00Z", -1},
    {TimeZone::berlin, "2024-01-14T23:00:00Z", "2024-01-15T22:59:59Z", 0},
    {TimeZone::berlin, "1969-12-31T23:00:00Z", "1970-01-01T12:00:00Z", 0},
    {TimeZone::newYork, "2024-01-15T04:59:59Z", "2024-01-15T05:00:00Z", -1},
    {TimeZone::newYork, "2024-01-15T05:00:00Z", "2024-01-16T04:59:59Z", 0},
    {TimeZone::newYork, "2024-07-15T03:59:59Z", "2024-07-15T04:00:00Z", -1},
    {TimeZone::kolkata, "2024-01-14T18:29:59Z", "2024-01-14T18:30:00Z", -1},
    {TimeZone::firstOfAll, "2024-01-14T10:00:00Z", "2024-01-15T09:59:59Z", 0},
    {TimeZone::firstOfAll, "2024-01-14T09:59:59Z", "2024-01-14T10:00:00Z", -1},
    {TimeZone::lastOfAll, "2024-01-14T12:00:00Z", "2024-01-15T11:59:59Z", 0},
    {TimeZone::lastOfAll, "2024-01-15T12:00:00Z", "2024-01-15T11:59:59Z", 1},
    // A day of 23 hours and its neighbours.
    {TimeZone::berlin, "2023-03-25T22:59:59Z", "2023-03-25T23:00:00Z", -1},
    {TimeZone::berlin, "2023-03-25T23:00:00Z", "2023-03-26T21:59:59Z", 0},
    {TimeZone::berlin, "2023-03-26T22:00:00Z", "2023-03-26T21:59:59Z", 1},
    // A day of 25 hours and its neighbours.
    {TimeZone::berlin, "2023-10-28T21:59:59Z", "2023-10-28T22:00:00Z", -1},
    {TimeZone::berlin, "2023-10-28T22:00:00Z", "2023-10-29T22:59:59Z", 0},
    {TimeZone::berlin, "2023-10-29T23:00:00Z", "2023-10-29T22:59:59Z", 1},
    // A day without midnight and its neighbours.
    {TimeZone::skipsMidnight, "2018-10-21T02:59:59Z", "2018-10-21T03:00:00Z", -1},
    {TimeZone::skipsMidnight, "2018-10-21T03:00:00Z", "2018-10-22T01:59:59Z", 0},
    {TimeZone::skipsMidnight, "2018-10-22T02:00:00Z", "2018-10-22T01:59:59Z", 1},
    // A day with two midnights.
    {TimeZone::skipsMidnight, "2018-02-17T02:00:00Z", "2018-02-18T02:59:59Z", 0},
    {TimeZone::skipsMidnight, "2018-02-18T02:59:59Z", "2018-02-18T03:00:00Z", -1},
};

struct Start {
    const char *zone;
    const char *date;
    const char *start;
};

constexpr Start starts[] = {
    {TimeZone::utc, "2024-03-01T17:45:12Z", "2024-03-01T00:00:00Z"},
    {TimeZone::utc, "2024-03-01T00:00:00Z", "2024-03-01T00:00:00Z"},
    {TimeZone::utc, "1901-03-01T17:45:12Z", "1901-03-01T00:00:00Z"},
    {TimeZone::berlin, "2024-01-15T12:00:00Z", "2024-01-14T23:00:00Z"},
    {TimeZone::berlin, "2024-07-15T12:00:00Z", "2024-07-14T22:00:00Z"},
    {TimeZone::berlin, "2023-03-26T12:00:00Z", "2023-03-25T23:00:00Z"},
    {TimeZone::newYork, "2024-01-15T02:00:00Z", "2024-01-14T05:00:00Z"},
    {TimeZone::skipsMidnight, "2018-10-21T12:00:00Z", "2018-10-21T03:00:00Z"},
};

constexpr const char *zones[] = {TimeZone::utc,           TimeZone::berlin,     TimeZone::newYork,
                                 TimeZone::skipsMidnight, TimeZone::firstOfAll, TimeZone::lastOfAll};

} // namespace

TEST(DayComparison, GoesByTheLocalDay)
{
    for (const Pair &pair : pairs) {
        const TimeZone zone(pair.zone);
        EXPECT_EQ(compareToDate(instant(pair.a), instant(pair.b)), pair.result)
            << pair.a << " and " << pair.b << " in " << pair.zone;
        EXPECT_EQ(compareToDate(instant(pair.b), instant(pair.a)), -pair.result)
            << pair.b << " and " << pair.a << " in " << pair.zone;
    }
}

TEST(DayComparison, NormalizesToTheFirstInstantOfTheLocalDay)
{
    for (const Start &start : starts) {
        const TimeZone zone(start.zone);
        EXPECT_EQ(normalizedDateWithDate(instant(start.date)), instant(start.start))
            << start.date << " in " << start.zone;
    }
}

TEST(DayComparison, FindsANilDateNeitherEarlierNorLater)
{
    const QDateTime now = instant("2024-03-01T12:00:00Z");
    EXPECT_FALSE(normalizedDateWithDate(QDateTime()).isValid());
    EXPECT_EQ(compareToDate(QDateTime(), now), 0);
    EXPECT_EQ(compareToDate(now, QDateTime()), 0);
    EXPECT_EQ(compareToDate(QDateTime(), QDateTime()), 0);
}

TEST(DayComparison, FindsTheDistantFutureLaterThanEveryDateThatCanBeWritten)
{
    for (const char *rule : zones) {
        const TimeZone zone(rule);
        EXPECT_EQ(compareToDate(distantFuture(), instant("2024-03-01T12:00:00Z")), 1) << rule;
        EXPECT_EQ(compareToDate(distantFuture(), instant("9999-12-31T23:59:59Z")), 1) << rule;
        EXPECT_EQ(compareToDate(distantFuture(), distantFuture()), 0) << rule;
        EXPECT_EQ(compareToDate(instant("9999-12-31T23:59:59Z"), instant("2024-03-01T12:00:00Z")), 1) << rule;
    }
}
