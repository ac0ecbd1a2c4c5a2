#pragma once

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
    /// When a message comes back: 2 after 3 hours, 3 after 5 hours, 4 never, else after 1 hour.
    std::int32_t notificationRepeat = 3;
    /// When a pop-up closes by itself: 1 after 15 s, 2 after 30 s, 3 after 60 s, 4 never, else after its own default.
    std::int32_t notificationClose = 2;
    /// How often to look for a message to show: 2 every 5 minutes, 3 15, 4 30, 5 60, else every minute.
    std::int32_t notificationShow = 3;

    /// The settings in the preferences file's dictionary, each as a number, a boolean or a text of one. One that is
    /// missing is off or 0: whoever saves settings saves them all.
    [[nodiscard]] static NotificationSettings fromDictionary(const QVariantMap &preferences);

    [[nodiscard]] bool operator==(const NotificationSettings &) const = default;
};
