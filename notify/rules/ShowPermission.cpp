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

bool shouldShowNotification(const KivNotification &record, const NotificationSettings &settings, const QDateTime &now)
{
    if (record.messagePriority() == kPriorityInstant) {
        return true;
    }
    const QDateTime next = record.lastShowDate().addSecs(repeatInterval(settings.notificationRepeat));
    const bool wasShownEnough = settings.notificationRepeat == kRepeatNever && record.wasDisplayed();
    return next < now && !wasShownEnough && priorityIsOn(record.messagePriority(), settings) &&
           typeIsOn(record.messageType(), settings);
}
