#pragma once

#include "platform/Geometry.h"

/// The bar of the desktop that holds the status items.
struct StatusBar {
    enum class Edge { Top, Bottom };

    Edge edge = Edge::Top;
    float thickness = 22; ///< In points.

    bool operator==(const StatusBar &) const = default;

    /// The bar at `point`, in the main screen's coordinates (platform/Geometry.h); 22 points at the top when there is
    /// no horizontal bar. Callers pass the status item's centre, or the mouse's position where the item's is unknown.
    [[nodiscard]] static StatusBar at(NSPoint point);
};
