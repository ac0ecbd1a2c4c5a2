#pragma once

#include <QByteArray>

#include <xcb/xcb.h>

/// What window managers and panels call an X window that is not Qt's. It may be gone already. Needs X; main thread
/// only.

/// Its class, by which others know whose it is; for the instance too.
void setWindowClass(xcb_window_t window, const QByteArray &name);

/// Its name, in UTF-8, which people see.
void setWindowName(xcb_window_t window, const QByteArray &name);

/// What the window manager calls itself (Extended Window Manager Hints, _NET_SUPPORTING_WM_CHECK); empty where there is
/// none, or none that does so.
[[nodiscard]] QByteArray nameOfWindowManager();

/// Whether that is a Wayland compositor made with wlroots, as sway is. Asks nobody outside a Wayland session.
[[nodiscard]] bool isWlrootsTheWindowManager();
