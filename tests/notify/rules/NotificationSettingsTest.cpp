#include "notify/rules/NotificationSettings.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

using Switch = bool NotificationSettings::*;
using Number = std::int32_t NotificationSettings::*;

struct SwitchKey {
    const char *key;
    Switch member;
};

constexpr SwitchKey switches[] = {
    {"KivNotificationShowNews", &NotificationSettings::shouldDisplayNews},
    {"KivNotificationShowNotices", &NotificationSettings::shouldDisplayNotices},
    {"KivNotificationShowUpdates", &NotificationSettings::shouldDisplayUpdates},
    {"KivNotificationShowWarnings", &NotificationSettings::shouldDisplayWarnings},
    {"KivNotificationShowLowPriority", &NotificationSettings::shouldDisplayLowPriority},
    {"KivNotificationShowMediumPriority", &NotificationSettings::shouldDisplayMediumPriority},
    {"KivNotificationShowHighPriority", &NotificationSettings::shouldDisplayHighPriority},
};

struct NumberKey {
    const char *key;
    Number member;
};

constexpr NumberKey numbers[] = {
    {"KivNotificationRepeatTimeout", &NotificationSettings::notificationRepeat},
    {"KivNotificationCloseTimeout", &NotificationSettings::notificationClose},
    {"KivNotificationShowTimeout", &NotificationSettings::notificationShow},
};

NotificationSettings withOnly(const char *key, const QVariant &value)
{
    return NotificationSettings::fromDictionary({{QString::fromLatin1(key), value}});
}

} // namespace

TEST(NotificationSettings, ShowsEverythingByDefault)
{
    const NotificationSettings settings;
    for (const SwitchKey &s : switches) {
        EXPECT_TRUE(settings.*s.member) << s.key;
    }
    EXPECT_EQ(settings.notificationRepeat, 3);
    EXPECT_EQ(settings.notificationClose, 2);
    EXPECT_EQ(settings.notificationShow, 3);
}

TEST(NotificationSettings, AreOffAndZeroWithoutKeys)
{
    const NotificationSettings settings = NotificationSettings::fromDictionary({});
    for (const SwitchKey &s : switches) {
        EXPECT_FALSE(settings.*s.member) << s.key;
    }
    for (const NumberKey &n : numbers) {
        EXPECT_EQ(settings.*n.member, 0) << n.key;
    }
}

TEST(NotificationSettings, ReadEverySwitchUnderItsKey)
{
    for (const SwitchKey &s : switches) {
        NotificationSettings expected = NotificationSettings::fromDictionary({});
        expected.*s.member = true;
        EXPECT_EQ(withOnly(s.key, true), expected) << s.key;
    }
}

TEST(NotificationSettings, ReadEveryNumberUnderItsKey)
{
    for (const NumberKey &n : numbers) {
        NotificationSettings expected = NotificationSettings::fromDictionary({});
        expected.*n.member = 4;
        EXPECT_EQ(withOnly(n.key, 4), expected) << n.key;
    }
}

TEST(NotificationSettings, ReadASwitchFromBooleansNumbersAndText)
{
    struct Case {
        QVariant value;
        bool isOn;
    };
    const Case cases[] = {
        {true, true},
        {false, false},
        {QVariant::fromValue<qlonglong>(1), true},
        {QVariant::fromValue<qlonglong>(0), false},
        {QVariant::fromValue<qlonglong>(-1), true},
        {QVariant::fromValue<qlonglong>(1LL << 32), true},
        {0.5, true},
        {0.0, false},
        {QStringLiteral("YES"), true},
        {QStringLiteral("yes"), true},
        {QStringLiteral("true"), true},
        {QStringLiteral("1"), true},
        {QStringLiteral("2"), true},
        {QStringLiteral("NO"), false},
        {QStringLiteral("false"), false},
        {QStringLiteral("0"), false},
        {QStringLiteral(""), false},
        {QVariantList{true}, false},
        {QByteArray("1"), false},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(withOnly("KivNotificationShowNews", c.value).shouldDisplayNews, c.isOn)
            << c.value.typeName() << ' ' << c.value.toString().toStdString();
    }
}

TEST(NotificationSettings, ReadANumberFromNumbersAndText)
{
    struct Case {
        QVariant value;
        std::int32_t number;
    };
    const Case cases[] = {
        {QVariant::fromValue<qlonglong>(4), 4},
        {QVariant::fromValue<qlonglong>(-4), -4},
        {4.9, 4},
        {true, 1},
        {QStringLiteral("4"), 4},
        {QStringLiteral(" 4 hours"), 4},
        {QStringLiteral("four"), 0},
        {QStringLiteral(""), 0},
        {QVariant::fromValue<qlonglong>(1LL << 40), std::numeric_limits<std::int32_t>::max()},
        {QVariantMap(), 0},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(withOnly("KivNotificationRepeatTimeout", c.value).notificationRepeat, c.number)
            << c.value.typeName() << ' ' << c.value.toString().toStdString();
    }
}

TEST(NotificationSettings, AreWrittenUnderTheKeysTheyAreReadFromAndLeaveTheOthers)
{
    const QString foreign = QStringLiteral("SomebodyElsesKey");
    for (const SwitchKey &s : switches) {
        NotificationSettings settings;
        settings.*s.member = false;
        settings.notificationShow = 77;
        QVariantMap preferences{{foreign, QStringLiteral("kept")}, {QString::fromLatin1(s.key), 1}};
        settings.writeTo(preferences);
        EXPECT_EQ(preferences.size(), 11);
        EXPECT_EQ(preferences.value(foreign), QStringLiteral("kept"));
        EXPECT_EQ(preferences.value(QLatin1String(s.key)), QVariant(false)) << s.key;
        EXPECT_EQ(preferences.value(QLatin1String(s.key)).typeId(), QMetaType::Bool) << s.key;
        EXPECT_EQ(preferences.value(QLatin1String("KivNotificationShowTimeout")), QVariant(77));
        EXPECT_EQ(NotificationSettings::fromDictionary(preferences), settings) << s.key;
    }
}
