#pragma once

/// Points, sizes and rectangles of the screen as the agent's own rules see them: in points, as 32-bit floats, with the
/// origin at the bottom-left corner of the main screen and y growing upwards. Qt's QPoint and QRect count from the top;
/// only platform/MainScreen.h converts between the two, and the different types keep them from being mixed up.

struct NSPoint {
    float x = 0;
    float y = 0;

    bool operator==(const NSPoint &) const = default;
};

struct NSSize {
    float width = 0;
    float height = 0;

    bool operator==(const NSSize &) const = default;
};

struct NSRect {
    NSPoint origin; ///< The bottom-left corner.
    NSSize size;

    bool operator==(const NSRect &) const = default;
};
