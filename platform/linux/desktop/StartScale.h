#pragma once

#include <QByteArray>

#include <xcb/xcb.h>

/// Has Qt know the desktop's whole scale (Gdk/WindowScalingFactor), of which it takes the dots per inch alone. It
/// counts for as long as the application object lives: Qt has no way to be told of another. Main thread only.
namespace StartScale
{

/// Before the application object is made. A choice of the user's (QT_SCALE_FACTOR) stays. `x` may be any connection,
/// `screen` the number of its screen.
void announce(xcb_connection_t *x, int screen);

/// Behind it, so that programs that are started from here do not have it twice.
void withdraw();

} // namespace StartScale

/// The value of Xft.dpi in the X resources, as xrdb has put them into a property; 0 when it is not there or no positive
/// number. Reentrant.
[[nodiscard]] double xftDpi(const QByteArray &resources);
