#include "notify/rules/ShowPermission.h"

#include "notify/record/DistantFuture.h"
#include "notify/record/KivNotification.h"
#include "platform/data/UtcTime.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

const QDateTime present(QDate(2024, 3, 1), QTime(12, 0), inUtc);
constexpr std::int32_t intMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t intMax = std::numeric_limits<std::int32_t>::max();

NotificationSettings repeating(std::int32_t code)
{
    NotificationSettings settings;
    settings.notificationRepeat = code;
    return settings;
}

NotificationSettings everythingOff()
{
    return NotificationSettings::fromDictionary({});
}

KivNotification lastShown(qint64 secondsAgo)
{
    KivNotification record;
    record.setLastShowDate(present.addSecs(-secondsAgo));
    return record;
}

struct Interval {
    std::int32_t code;
    qint64 seconds;
};

constexpr Interval intervals[] = {
    {0, 3600}, {1, 3600}, {2, 10800}, {3, 18000}, {4, 3600}, {5, 3600}, {-1, 3600}, {intMin, 3600}, {intMax, 3600},
};

using Switch = bool NotificationSettings::*;

struct CodeSwitch {
    std::int32_t code;
    Switch needed;
};

constexpr CodeSwitch prioritySwitches[] = {
    {0, &NotificationSettings::shouldDisplayLowPriority},
    {1, &NotificationSettings::shouldDisplayMediumPriority},
    {2, &NotificationSettings::shouldDisplayHighPriority},
};

constexpr CodeSwitch typeSwitches[] = {
    {0, &NotificationSettings::shouldDisplayUpdates},
    {1, &NotificationSettings::shouldDisplayNotices},
    {2, &NotificationSettings::shouldDisplayNews},
    {3, &NotificationSettings::shouldDisplayWarnings},
};

} // namespace

TEST(ShowPermission, IsGivenOnlyAfterTheRepeatInterval)
{
    for (const Interval &interval : intervals) {
        const NotificationSettings settings = repeating(interval.code);
        EXPECT_FALSE(shouldShowNotification(lastShown(interval.seconds - 1), settings, present)) << interval.code;
        EXPECT_FALSE(shouldShowNotification(lastShown(interval.seconds), settings, present)) << interval.code;
        EXPECT_TRUE(shouldShowNotification(lastShown(interval.seconds + 1), settings, present)) << interval.code;
    }
}

TEST(ShowPermission, KeepsTheIntervalToTheMillisecond)
{
    KivNotification record;
    record.setLastShowDate(present.addSecs(-3600).addMSecs(-1));
    EXPECT_TRUE(shouldShowNotification(record, repeating(1), present));
    record.setLastShowDate(present.addSecs(-3600));
    EXPECT_FALSE(shouldShowNotification(record, repeating(1), present));
    record.setLastShowDate(present.addSecs(-3600).addMSecs(1));
    EXPECT_FALSE(shouldShowNotification(record, repeating(1), present));
}

TEST(ShowPermission, IsRefusedTwoHoursAfterTheLastShowingWhenThreeAreAsked)
{
    EXPECT_FALSE(shouldShowNotification(lastShown(7200), repeating(2), present));
    EXPECT_FALSE(shouldShowNotification(lastShown(10799), repeating(2), present));
    EXPECT_TRUE(shouldShowNotification(lastShown(10801), repeating(2), present));
}

TEST(ShowPermission, IsGivenToARecordThatWasNeverShown)
{
    EXPECT_TRUE(shouldShowNotification(KivNotification(), NotificationSettings(), present));
    KivNotification record;
    record.setLastShowDate(QDateTime());
    EXPECT_TRUE(shouldShowNotification(record, NotificationSettings(), present));
}

TEST(ShowPermission, IsRefusedWhenTheClockWasSetBack)
{
    EXPECT_FALSE(shouldShowNotification(lastShown(-3600), repeating(1), present));
    KivNotification record;
    record.setLastShowDate(distantFuture());
    EXPECT_FALSE(shouldShowNotification(record, repeating(1), present));
}

TEST(ShowPermission, IsGivenOnceOnlyWithCodeFour)
{
    KivNotification record = lastShown(100'000);
    record.setWasDisplayed(true);
    EXPECT_FALSE(shouldShowNotification(record, repeating(4), present));
    record.setWasDisplayed(false);
    EXPECT_TRUE(shouldShowNotification(record, repeating(4), present));
}

TEST(ShowPermission, DoesNotAskWhetherItWasShownWithOtherCodes)
{
    KivNotification record = lastShown(100'000);
    record.setWasDisplayed(true);
    for (const std::int32_t code : {0, 1, 2, 3, 5, -4}) {
        EXPECT_TRUE(shouldShowNotification(record, repeating(code), present)) << code;
    }
}

TEST(ShowPermission, NeedsTheSwitchesOfPriorityAndTypeAndNoOther)
{
    for (const CodeSwitch &priority : prioritySwitches) {
        for (const CodeSwitch &type : typeSwitches) {
            KivNotification record;
            record.setMessagePriority(priority.code);
            record.setMessageType(type.code);
            NotificationSettings settings = everythingOff();
            EXPECT_FALSE(shouldShowNotification(record, settings, present));
            settings.*priority.needed = true;
            EXPECT_FALSE(shouldShowNotification(record, settings, present)) << "without type " << type.code;
            settings.*type.needed = true;
            EXPECT_TRUE(shouldShowNotification(record, settings, present)) << priority.code << ", " << type.code;
            settings.*priority.needed = false;
            EXPECT_FALSE(shouldShowNotification(record, settings, present)) << "without priority " << priority.code;
        }
    }
}

TEST(ShowPermission, NeedsNoSwitchForOtherCodes)
{
    for (const std::int32_t priority : {4, -1, intMin, intMax}) {
        for (const std::int32_t type : {4, -1, intMin, intMax}) {
            KivNotification record;
            record.setMessagePriority(priority);
            record.setMessageType(type);
            EXPECT_TRUE(shouldShowNotification(record, everythingOff(), present)) << priority << ", " << type;
        }
    }
}

TEST(ShowPermission, IsAlwaysGivenToAnInstantMessage)
{
    NotificationSettings settings = everythingOff();
    settings.notificationRepeat = 4;
    for (const std::int32_t type : {0, 1, 2, 3}) {
        KivNotification record = lastShown(1);
        record.setMessagePriority(3);
        record.setMessageType(type);
        record.setWasDisplayed(true);
        EXPECT_TRUE(shouldShowNotification(record, settings, present)) << type;
    }
}

TEST(ShowPermission, NamesTheFirstObstacle)
{
    NotificationSettings settings = everythingOff();
    settings.notificationRepeat = 4;
    KivNotification record = lastShown(1);
    record.setMessagePriority(2);
    record.setWasDisplayed(true);
    EXPECT_EQ(obstacleToShowing(record, settings, present), ShowObstacle::Interval);
    record.setLastShowDate(present.addSecs(-100'000));
    EXPECT_EQ(obstacleToShowing(record, settings, present), ShowObstacle::ShownOnce);
    record.setWasDisplayed(false);
    EXPECT_EQ(obstacleToShowing(record, settings, present), ShowObstacle::PriorityOff);
    settings.shouldDisplayHighPriority = true;
    EXPECT_EQ(obstacleToShowing(record, settings, present), ShowObstacle::TypeOff);
    settings.shouldDisplayNotices = true;
    EXPECT_EQ(obstacleToShowing(record, settings, present), ShowObstacle::None);
}
