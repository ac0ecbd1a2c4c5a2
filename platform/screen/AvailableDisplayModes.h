#pragma once

#include <Carbon/Carbon.h>

/// One dictionary for each mode of the display, in the system's order: "Width" and "Height", in the unit of
/// CGDisplayBounds, and "UsableForDesktopGUI". The sizes are those at which the desktop can be shown, and the present
/// one is among them. Null without a display. Not the caller's: it lives until the next call. Main thread only.
[[nodiscard]] CFArrayRef availableDisplayModes(CGDirectDisplayID display);
