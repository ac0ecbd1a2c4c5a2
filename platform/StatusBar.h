#pragma once

#include "platform/Geometry.h"

#include <optional>

/// The bar of the desktop that holds the status items.
struct StatusBar {
    enum class Edge { Top, Bottom, Left, Right };

    Edge edge = Edge::Top; ///< Of the monitor; the one that the bar is nearer to, where it lies off the edge.
    float thickness = 22;  ///< In points, from that edge to the bar's inner side.
    std::optional<NSRect> monitor = std::nullopt; ///< The one it is on, where that is not the main screen.

    bool operator==(const StatusBar &) const = default;

    /// The bar that holds `item`: the status item's frame, or the mouse's position with no size where that is not
    /// known, in the main screen's coordinates (platform/Geometry.h). Where no bar can be seen, it is taken to be as
    /// thick as the item is away from the edge, and 22 points at least.
    [[nodiscard]] static StatusBar around(NSRect item);
};
