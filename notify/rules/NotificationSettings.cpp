#include "notify/rules/NotificationSettings.h"

#include "platform/data/StringValues.h"

NotificationSettings NotificationSettings::fromDictionary(const QVariantMap &preferences)
{
    const auto isOn = [&](QLatin1String key) { return StringValues::boolValue(preferences.value(key)); };
    const auto number = [&](QLatin1String key) { return StringValues::intValue(preferences.value(key)); };
    return {
        .shouldDisplayNews = isOn(QLatin1String("KivNotificationShowNews")),
        .shouldDisplayNotices = isOn(QLatin1String("KivNotificationShowNotices")),
        .shouldDisplayUpdates = isOn(QLatin1String("KivNotificationShowUpdates")),
        .shouldDisplayWarnings = isOn(QLatin1String("KivNotificationShowWarnings")),
        .shouldDisplayLowPriority = isOn(QLatin1String("KivNotificationShowLowPriority")),
        .shouldDisplayMediumPriority = isOn(QLatin1String("KivNotificationShowMediumPriority")),
        .shouldDisplayHighPriority = isOn(QLatin1String("KivNotificationShowHighPriority")),
        .notificationRepeat = number(QLatin1String("KivNotificationRepeatTimeout")),
        .notificationClose = number(QLatin1String("KivNotificationCloseTimeout")),
        .notificationShow = number(QLatin1String("KivNotificationShowTimeout")),
    };
}
