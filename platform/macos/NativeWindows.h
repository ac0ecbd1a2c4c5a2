#pragma once

#include <QtGui/qwindowdefs.h>

class QMenu;

/// What has to be said to the system's own windows and menus. Apart from the rest because AppKit's NSPoint and the
/// agent's own cannot be seen by one file. A window is given as QWidget::winId() tells it. Main thread only.
namespace NativeWindows
{

/// Whether Qt's windows and menus are the system's. They are not on a platform of Qt's own such as "offscreen", which
/// tests have: there a winId() is no view of AppKit's. Nothing below may be called then.
[[nodiscard]] bool areThere();

/// The thickness of the menu bar, in points.
[[nodiscard]] double statusBarThickness();

/// In front of all windows of its level, without making the program the active one.
void orderFront(WId window);

/// Makes the program the active one, which the system may refuse, and gives the window the keyboard all the same: a
/// panel of a style of its own can have it in a program that is not active. Whether it takes Return and Escape then is
/// unproved, and doubtful, for Qt has made the panel before it gets that style: a Mac must show this first.
void activate(WId window);

/// On the level of the status items, above the windows of all programs and above their panels.
void setStatusLevel(WId window);

/// Opens the menu with its top-left corner there, in points from the main screen's bottom left, and returns when it has
/// closed.
void popUpMenu(QMenu &menu, double x, double y);

/// Closes the menu that popUpMenu() has open, if there is one, without a choice.
void closeMenu();

} // namespace NativeWindows
