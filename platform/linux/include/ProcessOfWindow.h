#pragma once

#include <xcb/xproto.h>

#include <sys/types.h>

/// The process that made a window, by the X server's own knowledge: programs need not say it in _NET_WM_PID, and may
/// lie. 0 when the server does not tell. Needs X; main thread only.
[[nodiscard]] pid_t processOfWindow(xcb_window_t window);
