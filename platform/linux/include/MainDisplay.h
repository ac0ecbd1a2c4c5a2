#pragma once

#include "platform/ScreenCoordinates.h"

#include <QRect>

#include <xcb/randr.h>

#include <optional>
#include <span>

/// The display that counts as the main one, with its place on the X screen.
struct MainDisplay {
    xcb_randr_output_t output = XCB_NONE;
    xcb_randr_crtc_t crtc = XCB_NONE;
    QRect bounds; ///< Of the CRTC, in device pixels of the root window.
};

/// What the choice looks at.
struct DisplayOutput {
    xcb_randr_output_t output = XCB_NONE;
    xcb_randr_crtc_t crtc = XCB_NONE; ///< XCB_NONE while it is switched off.
    bool connected = false;
};

/// The index of the main display among `outputs`: the primary output, if it is connected and has a CRTC, else the first
/// that is and has.
[[nodiscard]] std::optional<std::size_t> pickMainOutput(xcb_randr_output_t primary,
                                                        std::span<const DisplayOutput> outputs);

/// The main display, asked of the X server at each call; nothing without X. The CRTC's rectangle is used, since the
/// root window may be larger than what is shown; without RandR or a connected display the root window's stands in, with
/// neither output nor CRTC. Main thread only.
[[nodiscard]] std::optional<MainDisplay> mainDisplay();

/// The same on another connection than Qt's; nothing without RandR or a connected display.
[[nodiscard]] std::optional<MainDisplay> mainDisplay(xcb_connection_t *x, xcb_window_t root);

/// The main display's coordinates, with the device pixel ratio of Qt's primary screen.
[[nodiscard]] ScreenCoordinates screenCoordinates();
