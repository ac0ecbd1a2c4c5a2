#pragma once

#include "platform/linux/screen/XVisual.h"

#include <QImage>
#include <QRect>

#include <xcb/xcb.h>

/// The pixels of X windows, in the format of their visual. Errors are none: a window may be gone, or off the screen.
/// Needs X; main thread only.

/// What is seen of a window there. Null while a part of it is off the screen; it is exposed when it comes back.
[[nodiscard]] QImage pictureOf(xcb_window_t window, const QRect &area, const XVisual &visual);

/// Puts a picture in that format on the window.
void putPicture(xcb_window_t window, QPoint place, const QImage &picture, const XVisual &visual);
