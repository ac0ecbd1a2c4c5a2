#pragma once

#include "platform/Geometry.h"

#include <optional>

/// Where everything in a pop-up goes. All lengths are in points; all frames but the window's are in the window's own
/// coordinates, whose origin is its bottom-left corner.

/// What the layout depends on.
struct PopUpContents {
    NSSize contentSize; ///< What the message asks for as the size of its text.
    bool hasTitle = false;
    bool isInstant = false; ///< One button instead of two.
    /// The height that the text takes when laid out at the content width; nothing for the plan before it is known.
    std::optional<float> textHeight;
};

struct PopUpLayout {
    NSRect window; ///< With its origin at (0, 0).
    NSRect icon;
    NSRect title; ///< Without meaning for a pop-up without one.
    NSRect text;
    NSRect remindMeLater; ///< Without meaning for an instant message, as the next.
    NSRect dontRemindMe;
    NSRect closeButton; ///< Of an instant message only.

    bool operator==(const PopUpLayout &) const = default;
};

/// The layout for contents whose size is bounded (below). The window is planned for the content height, and grows or
/// shrinks by what the text then takes more or less; the text never takes less than a title's height.
[[nodiscard]] PopUpLayout popUpLayout(const PopUpContents &contents);

/// A content size that a pop-up can have. The message may ask for anything: a width that is no positive number is the
/// default, and it is at most what lets the window keep its margins to both sides of a main screen of size `screen`; a
/// height that is no positive number is 0, and it is at most maxMeasuredHeight.
[[nodiscard]] NSSize boundedContentSize(NSSize asked, NSSize screen);

/// How much of the text can be seen at once: as much as leaves the window its margins at the top, where something may
/// reach `reach` down, and at the bottom of the main screen, since the buttons are at its lower end. At least 50, even
/// if the screen is too small. `contents` are bounded.
[[nodiscard]] float maxTextHeight(const PopUpContents &contents, NSSize screen, float reach);
