#pragma once

#include <xcb/xcb.h>

#include <optional>

/// The scale that windows have when the application object is made. Main thread only.
namespace StartScale
{

/// Before the application object is made: has Qt begin with the scale of the desktop's windows, and look for one on
/// each of its screens from then on (DesktopScale). What the user has said to Qt of scales (QT_SCALE_FACTOR and its
/// like) stays, and then nothing is announced. `x` may be any connection, `screen` the number of its screen.
void announce(xcb_connection_t *x, int screen);

/// What was announced; nothing when nothing was.
[[nodiscard]] std::optional<double> announced();

/// Behind it, so that programs that are started from here do not have it for a choice of the user's.
void withdraw();

} // namespace StartScale
