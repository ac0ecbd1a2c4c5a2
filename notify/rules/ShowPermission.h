#pragma once

#include "notify/rules/NotificationSettings.h"

#include <QDateTime>

class KivNotification;

/// Whether `record` may be shown now: an instant one (priority 3) always; any other when the repeat interval since it
/// was last shown is over, it has not been shown before if the user wants each once only, and the switches of its
/// priority and type are on. A record without a last-show date has never been shown. Reentrant.
[[nodiscard]] bool shouldShowNotification(const KivNotification &record, const NotificationSettings &settings,
                                          const QDateTime &now);
