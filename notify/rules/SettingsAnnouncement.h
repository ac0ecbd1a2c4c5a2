#pragma once

#include <QLatin1String>

/// The distributed notification (platform/DistributedNotifications.h) by which whoever has written the user's settings
/// says so. Others spell it so.
inline constexpr QLatin1String settingsChanged("KivMunuUpdateSettingsNotification");
