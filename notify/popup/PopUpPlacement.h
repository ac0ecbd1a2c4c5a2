#pragma once

#include "platform/Geometry.h"

/// What a pop-up keeps clear at the edges of the main screen, in points; at the top there is a panel.
inline constexpr float popUpSideMargin = 10;
inline constexpr float popUpTopMargin = 30;
inline constexpr float popUpBottomMargin = 10;

/// Where the pop-up's bottom-left corner goes: at the margins from the right edge and the top of the main screen. In
/// points of the main screen, whose own origin is not added. A pop-up too large for the screen sticks out at the left
/// or the bottom.
[[nodiscard]] NSPoint popUpOrigin(NSSize mainScreen, NSSize popUp) noexcept;
