#pragma once

#include "platform/Geometry.h"

/// Where the pop-up's bottom-left corner goes: 10 points from the right edge of the main screen, its top edge 30 points
/// below the screen's top, clear of the panel there. In points of the main screen, whose own origin is not added. A
/// pop-up too large for the screen sticks out at the left or the bottom.
[[nodiscard]] NSPoint popUpOrigin(NSSize mainScreen, NSSize popUp) noexcept;
