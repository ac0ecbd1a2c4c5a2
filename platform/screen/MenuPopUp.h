#pragma once

#include <QMenu>
#include <QPoint>

/// Opens a menu of the status item with its top-left corner at `corner` (Qt's global coordinates), and returns when it
/// has closed. It is the system's own menu where only that gets the keys while the program is not the active one. Main
/// thread only.
void popUpMenu(QMenu &menu, QPoint corner);

/// Whether a menu is open that popUpMenu() has left to the system. QMenu::isVisible() does not tell of it, and while it
/// is open events are still handled. Main thread only.
[[nodiscard]] bool isSystemMenuOpen();

/// Closes that menu, without a choice; QMenu::close() does not, and neither does the end of the event loop. Nothing
/// happens without one. Main thread only.
void closeSystemMenu();
