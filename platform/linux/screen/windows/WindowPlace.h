#pragma once

#include <QRect>

#include <xcb/xcb.h>

#include <optional>

/// Where a window is that the user can see.
struct WindowPlace {
    QRect rect;      ///< In device pixels of the root window.
    bool isTopLevel; ///< Not within another window.
};

/// Of `window`, as the server has it now; nothing while it is not on screen, or is on no monitor: programs move there
/// what is to be shown elsewhere by other means. Needs X; main thread only.
[[nodiscard]] std::optional<WindowPlace> placeOnScreen(xcb_window_t window);
