#include "platform/data/PropertyListValues.h"

#include "platform/data/UtcTime.h"

#include <gtest/gtest.h>

#include <limits>

using namespace PropertyListValues;

namespace
{

struct Moment {
    const char *text;
    qint64 seconds; ///< Since 1970.
};

// The seconds are those of `date -u -d ... +%s`.
constexpr Moment moments[] = {
    {"0001-01-01T00:00:00Z", -62135596800},
    {"1582-10-14T23:59:59Z", -12219292801},
    {"1900-02-28T12:00:00Z", -2203934400},
    {"1969-12-31T23:59:59Z", -1},
    {"1970-01-01T00:00:00Z", 0},
    {"2000-02-29T23:59:59Z", 951868799},
    {"2001-01-01T00:00:00Z", 978307200},
    {"2038-01-19T03:14:08Z", 2147483648},
    {"2100-03-01T00:00:00Z", 4107542400},
    {"4001-01-01T00:00:00Z", 64092211200},
    {"9999-12-31T23:59:59Z", 253402300799},
};

QDateTime inZone(QDate date, QTime time, int secondsFromUtc)
{
    return QDateTime(date, time, inUtc).addSecs(-secondsFromUtc).toOffsetFromUtc(secondsFromUtc);
}

TEST(PropertyListDate, IsReadAndWrittenForEveryYear)
{
    for (const auto &[text, seconds] : moments) {
        const std::optional<QDateTime> date = dateFromText(QString::fromLatin1(text));
        ASSERT_TRUE(date.has_value()) << text;
        EXPECT_EQ(date->toSecsSinceEpoch(), seconds) << text;
        EXPECT_EQ(date->timeSpec(), Qt::UTC) << text;
        EXPECT_EQ(dateToText(*date), text);
        EXPECT_EQ(PropertyListValues::date(double(seconds)), *date) << text;
    }
}

TEST(PropertyListDate, IsRefusedInAnyOtherForm)
{
    const char16_t *texts[] = {
        u"",
        u"2001",
        u"2001-01-01",
        u"2001-01-01T00:00Z",
        u"2001-01-01T00:00:00",
        u"2001-01-01T00:00:00.5Z",
        u"2001-01-01T00:00:00+01:00",
        u"2001-01-01T00:00:00ZZ",
        u"2001-01-01t00:00:00z",
        u"2001-01-01 00:00:00Z",
        u"2001-1-1T00:00:00Z",
        u"201-01-01T00:00:00Z",
        u"12001-01-01T00:00:00Z",
        u"-2001-01-01T00:00:00Z",
        u"+201-01-01T00:00:00Z",
        u"2001-00-01T00:00:00Z",
        u"2001-13-01T00:00:00Z",
        u"2001-01-00T00:00:00Z",
        u"2001-02-29T00:00:00Z",
        u"1900-02-29T00:00:00Z",
        u"2001-04-31T00:00:00Z",
        u"2001-01-01T24:00:00Z",
        u"2001-01-01T00:60:00Z",
        u"2001-01-01T00:00:60Z",
        u"2001-01-01T00:00:-1Z",
        u"\u0662\u0660\u0660\u0661-01-01T00:00:00Z",
    };
    for (const char16_t *text : texts) {
        EXPECT_FALSE(dateFromText(QStringView(text)).has_value()) << QString::fromUtf16(text).toStdString();
    }
}

TEST(PropertyListDate, StaysBetweenTheYears1And9999)
{
    constexpr const char *first = "0001-01-01T00:00:00Z";
    constexpr const char *last = "9999-12-31T23:59:59Z";
    const std::pair<QDateTime, const char *> dates[] = {
        {QDateTime(QDate(10000, 1, 1), QTime(0, 0), inUtc), last},
        {QDateTime(QDate(14000, 6, 1), QTime(0, 0), inUtc), last},
        {inZone(QDate(2'000'000, 1, 1), QTime(0, 0), -3600), last},
        {QDateTime(QDate(9999, 12, 31), QTime(23, 59, 59, 999), inUtc), last},
        {inZone(QDate(9999, 12, 31), QTime(23, 30), -3600), last},
        {QDateTime::fromMSecsSinceEpoch(std::numeric_limits<qint64>::max(), inUtc), last},
        {QDateTime::fromMSecsSinceEpoch(std::numeric_limits<qint64>::max()), last},
        {QDateTime::fromMSecsSinceEpoch(std::numeric_limits<qint64>::min(), inUtc), first},
        {QDateTime(QDate(-44, 3, 15), QTime(12, 0), inUtc), first},
        {inZone(QDate(1, 1, 1), QTime(0, 30), 3600), first},
    };
    for (const auto &[date, text] : dates) {
        ASSERT_TRUE(date.isValid());
        EXPECT_EQ(dateToText(date), text);
    }
    EXPECT_EQ(dateToText(dateFromText(QStringLiteral("0000-12-30T00:00:00Z")).value()), first);

    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double seconds : {253402300800.0, 1e15, 1e300, infinity}) {
        EXPECT_EQ(dateToText(PropertyListValues::date(seconds)), last) << seconds;
        EXPECT_EQ(dateToText(PropertyListValues::date(-seconds)), first) << seconds;
    }
}

TEST(PropertyListDate, IsRoundedDownToTheSecond)
{
    EXPECT_EQ(dateToText(QDateTime::fromMSecsSinceEpoch(1999, inUtc)), "1970-01-01T00:00:01Z");
    EXPECT_EQ(dateToText(QDateTime::fromMSecsSinceEpoch(-1, inUtc)), "1969-12-31T23:59:59Z");
    EXPECT_EQ(PropertyListValues::date(1.999).toMSecsSinceEpoch(), 1000);
    EXPECT_EQ(PropertyListValues::date(-0.001).toMSecsSinceEpoch(), -1000);
}

TEST(PropertyListDate, IsWrittenInUtcWhateverItsZone)
{
    EXPECT_EQ(dateToText(inZone(QDate(2020, 1, 1), QTime(0, 30), 3600)), "2019-12-31T23:30:00Z");
}

TEST(PropertyListInteger, IsUnsignedOnlyWhereItMustBe)
{
    EXPECT_EQ(integer(7).typeId(), QMetaType::LongLong);
    EXPECT_EQ(integer((std::uint64_t(1) << 63) - 1).typeId(), QMetaType::LongLong);
    EXPECT_EQ(integer(std::uint64_t(1) << 63).typeId(), QMetaType::ULongLong);
}

} // namespace
