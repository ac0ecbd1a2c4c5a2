#pragma once

#include <QMenu>
#include <QPoint>

/// Opens a menu of the status item with its top-left corner at `corner` (Qt's global coordinates), and returns when it
/// has closed. It is the system's own menu where only that gets the keys while the program is not the active one. Main
/// thread only.
void popUpMenu(QMenu &menu, QPoint corner);
