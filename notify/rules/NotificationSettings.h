#pragma once

#include "notify/rules/SettingCodes.h"

#include <QVariantMap>

#include <cstdint>

/// The user's notification settings. The values of a new one are those of a user who has never chosen any.
struct NotificationSettings {
    bool shouldDisplayNews = true;
    bool shouldDisplayNotices = true;
    bool shouldDisplayUpdates = true;
    bool shouldDisplayWarnings = true;
    bool shouldDisplayLowPriority = true;
    bool shouldDisplayMediumPriority = true;
    bool shouldDisplayHighPriority = true;
    /// A RepeatSetting, a CloseSetting and a ShowSetting, each as it stands in the file.
    std::int32_t notificationRepeat = kRepeatAfter5Hours;
    std::int32_t notificationClose = kCloseAfter30Seconds;
    std::int32_t notificationShow = kShowEvery15Minutes;

    /// The settings in the preferences file's dictionary, each as a number, a boolean or a text of one. One that is
    /// missing is off or 0: whoever saves settings saves them all.
    [[nodiscard]] static NotificationSettings fromDictionary(const QVariantMap &preferences);

    /// Puts all of them under their keys, each as the type that it has; other keys stay.
    void writeTo(QVariantMap &preferences) const;

    [[nodiscard]] bool operator==(const NotificationSettings &) const = default;
};
