#pragma once

#include "platform/Geometry.h"

#include <optional>

/// A pop-up that has moved, or whose screens have changed. All in points of the main screen.
struct PopUpSituation final {
    NSSize prevScreenSize;             ///< The main screen's size when the pop-up was placed.
    NSSize screenSize;                 ///< The size of the screen with the menu bar now; 0 x 0 when there is none.
    std::optional<NSRect> popUpScreen; ///< The frame of the screen on which the pop-up lies; none when on none.
    NSRect mainScreen;                 ///< The main screen's frame; empty when there is none.
    NSPoint wanted;                    ///< Where the pop-up's bottom-left corner belongs.
    NSPoint actual;                    ///< Where it is.
};

enum class PopUpReaction {
    Nothing,
    MoveThere, ///< The same pop-up goes to where it belongs.
    Recreate   ///< A new one takes its place there.
};

/// The pop-up is pinned: it follows its corner when the screen's size changes, and is made anew when something else has
/// moved it.
[[nodiscard]] PopUpReaction reactionTo(const PopUpSituation &situation) noexcept;
