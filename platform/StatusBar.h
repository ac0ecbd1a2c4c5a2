#pragma once

#include "platform/Geometry.h"

/// The bar of the desktop that holds the status items.
struct StatusBar {
    enum class Edge { Top, Bottom };

    Edge edge = Edge::Top;
    float thickness = 22; ///< In points.

    bool operator==(const StatusBar &) const = default;

    /// The bar under `point` (in the main screen's coordinates, platform/Geometry.h): the status item's centre, or
    /// the mouse where the item's place is unknown. Where no horizontal bar lies there: 22 points at the top.
    [[nodiscard]] static StatusBar at(NSPoint point);
};
