#pragma once

#include <xcb/xcb.h>

#include <optional>
#include <span>

/// A window of the screen that is above one of ours.
struct WindowAbove {
    xcb_window_t window = XCB_NONE;
    bool isShown = false;
    bool isOverrideRedirect = false;
    bool fillsTheScreen = false; ///< Covers the whole main screen.
};

/// The window right above which ours is to be, where no window manager runs: the highest that one would have in its
/// care, but nothing above a screen locker, which is a window that fills the screen and no window manager touches.
/// Nothing when ours is well where it is: menus and tool tips may cover it. `aboveOurs` has the lowest first.
[[nodiscard]] std::optional<xcb_window_t> windowToRiseAbove(std::span<const WindowAbove> aboveOurs);

/// Puts that window of ours, a child of the root window, there. Needs X; main thread only.
void riseAboveWindowsOfOthers(xcb_window_t ours);
