#pragma once

#include "platform/Geometry.h"

/// What a pop-up keeps clear at the edges of the main screen, in points; at the top there is a panel.
inline constexpr float popUpSideMargin = 10;
inline constexpr float popUpTopMargin = 30;
inline constexpr float popUpBottomMargin = 10;

/// What it keeps clear at the top, where a panel, or the status item by itself, reaches `reach` points down: 30 for one
/// that leaves that, as a panel of the usual height does; under a taller one it stands without a gap.
[[nodiscard]] float popUpTop(float reach) noexcept;

/// Where the pop-up's bottom-left corner goes: at the margin from the right edge of the main screen, and popUpTop()
/// below its top. In points of the main screen, whose own origin is not added. A pop-up too large for the screen sticks
/// out at the left or the bottom.
[[nodiscard]] NSPoint popUpOrigin(NSSize mainScreen, NSSize popUp, float reach) noexcept;
