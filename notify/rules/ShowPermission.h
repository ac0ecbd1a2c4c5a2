#pragma once

#include "notify/rules/NotificationSettings.h"

#include <QDateTime>

class KivNotification;

/// Why a message may not be shown now: the first of these that holds.
enum class ShowObstacle {
    None,
    Interval,    ///< The repeat interval since it was last shown is not over.
    ShownOnce,   ///< The user wants each message once only, and it has been shown.
    PriorityOff, ///< The switch of its priority is off.
    TypeOff,     ///< The switch of its type is off.
};

/// What keeps `record` from being shown now. Reentrant.
[[nodiscard]] ShowObstacle obstacleToShowing(const KivNotification &record, const NotificationSettings &settings,
                                             const QDateTime &now);

/// For people.
[[nodiscard]] const char *description(ShowObstacle obstacle);

/// Whether `record` may be shown now: an instant one (priority 3) always; any other when the repeat interval since it
/// was last shown is over, it has not been shown before if the user wants each once only, and the switches of its
/// priority and type are on. A record without a last-show date has never been shown. Reentrant.
[[nodiscard]] bool shouldShowNotification(const KivNotification &record, const NotificationSettings &settings,
                                          const QDateTime &now);
