#pragma once

#include <chrono>
#include <sys/types.h>

/// The process that shows the status items of this session: the owner of the X display's tray selection, or else of
/// the bus name org.kde.StatusNotifierWatcher; 0 when there is neither. What was found is trusted for a tenth of a
/// second, so that going through all processes asks only once. Main thread only.
[[nodiscard]] pid_t trayHost();

/// Who shows this program's item: trayHost(), or hostInPlace() for as long as there has been none since the last one or
/// since this was asked for the first time. Main thread only.
[[nodiscard]] pid_t itemHost();

/// Who does after `found` (0 for none) has been missing for so long: from the third second on it is this process. It
/// shows the item by itself then, at the top of the X screen, which needs nobody else.
[[nodiscard]] pid_t hostInPlace(pid_t found, std::chrono::milliseconds missing) noexcept;
