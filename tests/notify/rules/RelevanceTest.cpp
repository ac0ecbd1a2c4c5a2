#include "notify/rules/Relevance.h"

#include "notify/record/DistantFuture.h"
#include "notify/record/KivNotification.h"
#include "platform/data/UtcTime.h"
#include "tests/notify/rules/TimeZone.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

namespace
{

const QDateTime now(QDate(2024, 3, 1), QTime(12, 0), inUtc);

Installation installation()
{
    Installation here;
    here.messageLevel = 0;
    here.productVersionString = QStringLiteral("3.5.1");
    here.buildDate = QStringLiteral("20110520");
    here.systemVersionString = QStringLiteral("10.6.8");
    return here;
}

/// A record that only its dates keep for today.
KivNotification relevantRecord()
{
    KivNotification record;
    record.setMinDate(now);
    record.setMaxDate(now);
    return record;
}

QDateTime moment(const char *text)
{
    return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate);
}

using Text = const char *;
using Setter = void (KivNotification::*)(const QString &);

struct TextRule {
    Text name;
    Setter set;
    Text bound; ///< Null is nil.
    bool relevant;
};

const TextRule textRules[] = {
    {"minVersion", &KivNotification::setMinVersion, "any", true},
    {"minVersion", &KivNotification::setMinVersion, "3.4", true},
    {"minVersion", &KivNotification::setMinVersion, "3.5", true},
    {"minVersion", &KivNotification::setMinVersion, "3.6", false},
    {"minVersion", &KivNotification::setMinVersion, "3.10", true},
    {"minVersion", &KivNotification::setMinVersion, "9.5", true},
    {"minVersion", &KivNotification::setMinVersion, nullptr, true},
    {"maxVersion", &KivNotification::setMaxVersion, "any", true},
    {"maxVersion", &KivNotification::setMaxVersion, "3.4", false},
    {"maxVersion", &KivNotification::setMaxVersion, "3.5", true},
    {"maxVersion", &KivNotification::setMaxVersion, "3.6", true},
    {"maxVersion", &KivNotification::setMaxVersion, "3.10", false},
    {"maxVersion", &KivNotification::setMaxVersion, nullptr, false},
    {"buildDate", &KivNotification::setBuildDate, "any", true},
    {"buildDate", &KivNotification::setBuildDate, "20110519", false},
    {"buildDate", &KivNotification::setBuildDate, "20110520", false},
    {"buildDate", &KivNotification::setBuildDate, "20110521", true},
    {"buildDate", &KivNotification::setBuildDate, "20110521 or so", true},
    {"buildDate", &KivNotification::setBuildDate, "9223372036854775807", true},
    {"buildDate", &KivNotification::setBuildDate, "20110521000000", true},
    {"buildDate", &KivNotification::setBuildDate, "-20110521", false},
    {"buildDate", &KivNotification::setBuildDate, "ANY", false},
    {"buildDate", &KivNotification::setBuildDate, "", false},
    {"buildDate", &KivNotification::setBuildDate, nullptr, false},
    {"minSysVer", &KivNotification::setMinSysVer, "any", true},
    {"minSysVer", &KivNotification::setMinSysVer, "10.6", true},
    {"minSysVer", &KivNotification::setMinSysVer, "10.5", true},
    {"minSysVer", &KivNotification::setMinSysVer, "10.7", false},
    {"minSysVer", &KivNotification::setMinSysVer, "10.10", true},
    {"minSysVer", &KivNotification::setMinSysVer, nullptr, true},
    {"maxSysVer", &KivNotification::setMaxSysVer, "any", true},
    {"maxSysVer", &KivNotification::setMaxSysVer, "10.6", true},
    {"maxSysVer", &KivNotification::setMaxSysVer, "10.5", false},
    {"maxSysVer", &KivNotification::setMaxSysVer, "10.7", true},
    {"maxSysVer", &KivNotification::setMaxSysVer, "10.10", false},
    {"maxSysVer", &KivNotification::setMaxSysVer, nullptr, false},
    {"systemCode", &KivNotification::setSystemCode, "win", true},
};

using CodeSetter = void (KivNotification::*)(std::int32_t) noexcept;

struct CodeRule {
    Text name;
    CodeSetter set;
    std::int32_t code;
    bool relevantForUser;
    bool relevantForAdmin;
};

const CodeRule codeRules[] = {
    {"level user", &KivNotification::setMessageLevel, 0, true, false},
    {"level admin", &KivNotification::setMessageLevel, 1, false, true},
    {"level any", &KivNotification::setMessageLevel, 2, true, true},
    {"level 3", &KivNotification::setMessageLevel, 3, false, false},
    {"level -1", &KivNotification::setMessageLevel, -1, false, false},
    {"product kivune", &KivNotification::setProductCode, 0, false, false},
    {"product kivunets", &KivNotification::setProductCode, 1, true, true},
    {"product any", &KivNotification::setProductCode, 2, true, true},
    {"product 3", &KivNotification::setProductCode, 3, false, false},
    {"edition trial", &KivNotification::setLicenseType, 0, false, false},
    {"edition paid", &KivNotification::setLicenseType, 1, true, true},
    {"edition any", &KivNotification::setLicenseType, 2, true, true},
    {"edition -2", &KivNotification::setLicenseType, -2, false, false},
};

QString text(Text bytes)
{
    return bytes ? QString::fromLatin1(bytes) : QString();
}

/// One rule that fails, by the name of its field in the feed, in the order of the rules.
struct Failing {
    Text name;
    std::function<void(KivNotification &)> apply;
};

const Failing failing[] = {
    {"messageLevel", [](KivNotification &record) { record.setMessageLevel(1); }},
    {"productCode", [](KivNotification &record) { record.setProductCode(0); }},
    {"licenseType", [](KivNotification &record) { record.setLicenseType(0); }},
    {"minVersion", [](KivNotification &record) { record.setMinVersion(QStringLiteral("3.9")); }},
    {"maxVersion", [](KivNotification &record) { record.setMaxVersion(QStringLiteral("3.0")); }},
    {"buildDate", [](KivNotification &record) { record.setBuildDate(QStringLiteral("1")); }},
    {"minSysVer", [](KivNotification &record) { record.setMinSysVer(QStringLiteral("10.9")); }},
    {"maxSysVer", [](KivNotification &record) { record.setMaxSysVer(QStringLiteral("10.0")); }},
    {"maxDate", [](KivNotification &record) { record.setMaxDate(now.addDays(-1)); }},
};

/// The rules that throw for a version without a second component, by their place among those above.
struct Throwing {
    std::size_t place;
    Setter set;
};

const Throwing throwing[] = {
    {3, &KivNotification::setMinVersion},
    {4, &KivNotification::setMaxVersion},
    {6, &KivNotification::setMinSysVer},
    {7, &KivNotification::setMaxSysVer},
};

} // namespace

TEST(Relevance, TakesARecordForAnybodyToday)
{
    EXPECT_TRUE(notificationIsRelevant(relevantRecord(), installation(), now));
}

TEST(Relevance, ComparesEveryTextBound)
{
    for (const TextRule &rule : textRules) {
        KivNotification record = relevantRecord();
        (record.*rule.set)(text(rule.bound));
        EXPECT_EQ(notificationIsRelevant(record, installation(), now), rule.relevant)
            << rule.name << ' ' << (rule.bound ? rule.bound : "nil");
    }
}

TEST(Relevance, ComparesEveryCode)
{
    Installation admin = installation();
    admin.messageLevel = 1;
    for (const CodeRule &rule : codeRules) {
        KivNotification record = relevantRecord();
        (record.*rule.set)(rule.code);
        EXPECT_EQ(notificationIsRelevant(record, installation(), now), rule.relevantForUser) << rule.name;
        EXPECT_EQ(notificationIsRelevant(record, admin, now), rule.relevantForAdmin) << rule.name;
    }
}

TEST(Relevance, ReadsTheInstallationsBuildDateAsTheBundleGivesIt)
{
    KivNotification record = relevantRecord();
    record.setBuildDate(QStringLiteral("2012"));
    Installation here = installation();
    here.buildDate = QStringLiteral("2011-05-20");
    EXPECT_TRUE(notificationIsRelevant(record, here, now)) << "only the digits before the dash count";
    here.buildDate = QString();
    EXPECT_TRUE(notificationIsRelevant(record, here, now));
    record.setBuildDate(QStringLiteral("0"));
    EXPECT_FALSE(notificationIsRelevant(record, here, now));
}

TEST(Relevance, FindsAnUnknownVersionLowerThanEveryBound)
{
    Installation unknown = installation();
    unknown.productVersionString = QString();
    unknown.systemVersionString = QString();
    EXPECT_TRUE(notificationIsRelevant(relevantRecord(), unknown, now));
    for (const Setter lowest : {&KivNotification::setMinVersion, &KivNotification::setMinSysVer}) {
        KivNotification record = relevantRecord();
        (record.*lowest)(QStringLiteral("0.0"));
        EXPECT_FALSE(notificationIsRelevant(record, unknown, now));
    }
    for (const Setter highest : {&KivNotification::setMaxVersion, &KivNotification::setMaxSysVer}) {
        KivNotification record = relevantRecord();
        (record.*highest)(QStringLiteral("0.0"));
        EXPECT_TRUE(notificationIsRelevant(record, unknown, now));
    }
}

TEST(Relevance, ComparesWholeDays)
{
    struct Case {
        const char *minDate;
        const char *maxDate;
        bool relevant;
    };
    const Case cases[] = {
        {"2024-03-01T23:59:00Z", "2024-03-01T00:00:00Z", true},
        {"2024-03-02T00:00:00Z", "2024-03-05T00:00:00Z", false},
        {"2024-02-01T00:00:00Z", "2024-02-29T23:59:59Z", false},
        {"2024-02-29T23:59:59Z", "2024-03-02T00:00:00Z", true},
        {"1970-01-01T00:00:00Z", "2024-03-01T00:00:00Z", true},
        {"1970-01-01T00:00:00Z", "1970-01-01T00:00:00Z", false},
        {"2024-03-05T00:00:00Z", "2024-02-05T00:00:00Z", false},
    };
    for (const Case &c : cases) {
        KivNotification record;
        record.setMinDate(moment(c.minDate));
        record.setMaxDate(moment(c.maxDate));
        EXPECT_EQ(notificationIsRelevant(record, installation(), now), c.relevant) << c.minDate << " to " << c.maxDate;
    }
}

TEST(Relevance, GoesByTheLocalDay)
{
    const TimeZone zone(TimeZone::firstOfAll);
    KivNotification record;
    record.setMinDate(moment("2024-03-02T00:00:00+14:00"));
    record.setMaxDate(moment("2024-03-02T00:00:00+14:00"));
    EXPECT_TRUE(notificationIsRelevant(record, installation(), now)) << "noon UTC is the next day's small hours here";
    EXPECT_FALSE(notificationIsRelevant(record, installation(), moment("2024-03-01T09:59:59Z")));
    EXPECT_FALSE(notificationIsRelevant(record, installation(), moment("2024-03-02T10:00:00Z")));
}

TEST(Relevance, NeverTakesARecordWhoseLastDayStayedAtItsDefault)
{
    EXPECT_FALSE(notificationIsRelevant(KivNotification(), installation(), now));
}

TEST(Relevance, TakesARecordForEverFromItsFirstDayOn)
{
    KivNotification record;
    record.setMinDate(now);
    record.setMaxDate(distantFuture());
    for (const int days : {0, 1, 365, 365'000}) {
        EXPECT_TRUE(notificationIsRelevant(record, installation(), now.addDays(days))) << days;
    }
    EXPECT_FALSE(notificationIsRelevant(record, installation(), now.addDays(-1)));
}

TEST(Relevance, FindsNoBoundInANilDate)
{
    KivNotification record = relevantRecord();
    record.setMinDate(QDateTime());
    record.setMaxDate(QDateTime());
    EXPECT_TRUE(notificationIsRelevant(record, installation(), now));
}

TEST(Relevance, FailsByEveryRuleAlone)
{
    for (const Failing &rule : failing) {
        KivNotification record = relevantRecord();
        rule.apply(record);
        EXPECT_FALSE(notificationIsRelevant(record, installation(), now)) << rule.name;
    }
}

TEST(Relevance, StopsAtTheFirstRuleThatFails)
{
    for (const Throwing &thrower : throwing) {
        for (std::size_t place = 0; place < std::size(failing); ++place) {
            if (place == thrower.place) {
                continue;
            }
            KivNotification record = relevantRecord();
            failing[place].apply(record);
            (record.*thrower.set)(QStringLiteral("3"));
            if (place < thrower.place) {
                EXPECT_FALSE(notificationIsRelevant(record, installation(), now)) << failing[place].name;
            } else {
                EXPECT_THROW((void)notificationIsRelevant(record, installation(), now), std::out_of_range)
                    << failing[place].name;
            }
        }
    }
}

TEST(Relevance, NamesTheFirstFieldThatDoesNotFit)
{
    EXPECT_FALSE(whyNotRelevant(relevantRecord(), installation(), now));
    KivNotification record = relevantRecord();
    record.setMinDate(now.addDays(1));
    EXPECT_EQ(whyNotRelevant(record, installation(), now), QLatin1String("minDate"));
    record = relevantRecord();
    // From the last rule to the first, so that each stands before those that fail already.
    for (auto rule = std::rbegin(failing); rule != std::rend(failing); ++rule) {
        rule->apply(record);
        EXPECT_EQ(whyNotRelevant(record, installation(), now), QLatin1String(rule->name));
    }
}
