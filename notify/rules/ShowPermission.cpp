#include "notify/rules/ShowPermission.h"

#include "notify/record/KivNotification.h"

namespace
{

qint64 repeatInterval(std::int32_t notificationRepeat)
{
    constexpr qint64 hour = 3600;
    switch (notificationRepeat) {
    case kRepeatAfter3Hours:
        return 3 * hour;
    case kRepeatAfter5Hours:
        return 5 * hour;
    default:
        return hour;
    }
}

bool priorityIsOn(std::int32_t priority, const NotificationSettings &settings)
{
    switch (priority) {
    case kPriorityLow:
        return settings.shouldDisplayLowPriority;
    case kPriorityMedium:
        return settings.shouldDisplayMediumPriority;
    case kPriorityHigh:
        return settings.shouldDisplayHighPriority;
    default:
        return true;
    }
}

bool typeIsOn(std::int32_t type, const NotificationSettings &settings)
{
    switch (type) {
    case kTypeUpdate:
        return settings.shouldDisplayUpdates;
    case kTypeNotice:
        return settings.shouldDisplayNotices;
    case kTypeNews:
        return settings.shouldDisplayNews;
    case kTypeWarning:
        return settings.shouldDisplayWarnings;
    default:
        return true;
    }
}

} // namespace

ShowObstacle obstacleToShowing(const KivNotification &record, const NotificationSettings &settings,
                               const QDateTime &now)
{
    if (record.messagePriority() == kPriorityInstant) {
        return ShowObstacle::None;
    }
    if (!(record.lastShowDate().addSecs(repeatInterval(settings.notificationRepeat)) < now)) {
        return ShowObstacle::Interval;
    }
    if (settings.notificationRepeat == kRepeatNever && record.wasDisplayed()) {
        return ShowObstacle::ShownOnce;
    }
    if (!priorityIsOn(record.messagePriority(), settings)) {
        return ShowObstacle::PriorityOff;
    }
    return typeIsOn(record.messageType(), settings) ? ShowObstacle::None : ShowObstacle::TypeOff;
}

const char *description(ShowObstacle obstacle)
{
    switch (obstacle) {
    case ShowObstacle::None:
        return "may be shown";
    case ShowObstacle::Interval:
        return "was shown not long enough ago";
    case ShowObstacle::ShownOnce:
        return "was shown, and each is wanted once only";
    case ShowObstacle::PriorityOff:
        return "has a priority that is switched off";
    case ShowObstacle::TypeOff:
        return "has a type that is switched off";
    }
    return "";
}

bool shouldShowNotification(const KivNotification &record, const NotificationSettings &settings, const QDateTime &now)
{
    return obstacleToShowing(record, settings, now) == ShowObstacle::None;
}
