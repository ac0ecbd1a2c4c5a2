#pragma once

#include <QtGui/qwindowdefs.h>

#ifdef __OBJC__
@class NSMenu;
#else
class NSMenu;
#endif

/// What has to be said to the system's own windows and menus. Apart from the rest because AppKit's NSPoint and the
/// agent's own cannot be seen by one file. A window is given as QWidget::winId() tells it. Main thread only.
namespace NativeWindows
{

/// The thickness of the menu bar, in points.
[[nodiscard]] double statusBarThickness();

/// In front of all windows of its level, without making the program the active one.
void orderFront(WId window);

/// Makes the program the active one and gives the window the keyboard. The system may refuse the first.
void activate(WId window);

/// On the level of the status items, above the windows of all programs and above their panels.
void setStatusLevel(WId window);

/// Opens the menu with its top-left corner there, in points from the main screen's bottom left, and returns when it has
/// closed.
void popUpMenu(NSMenu *menu, double x, double y);

} // namespace NativeWindows
