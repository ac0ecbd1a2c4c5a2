#pragma once

#include <sys/types.h>

/// The process that shows the status items of this session: the owner of the X display's tray selection, or else of
/// the bus name org.kde.StatusNotifierWatcher; 0 when there is neither. What was found is trusted for a tenth of a
/// second, so that going through all processes asks only once. Main thread only.
[[nodiscard]] pid_t trayHost();
