#pragma once

#include <QByteArray>

#include <xcb/xcb.h>

/// The X resources as xrdb has put them into a property of the root window; asks the server once. Empty when there are
/// none. `x` may be any connection. Main thread only.
[[nodiscard]] QByteArray askForXResources(xcb_connection_t *x);

/// The value of Xft.dpi in the X resources; 0 when it is not there or no positive number. Reentrant.
[[nodiscard]] double xftDpi(const QByteArray &resources);
