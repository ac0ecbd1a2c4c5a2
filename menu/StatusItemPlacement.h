#pragma once

#include "platform/Geometry.h"
#include "platform/StatusBar.h"

#include <optional>

/// Where the agent assumes the status item to be, and where its menu opens. All in points, origin bottom-left.

/// The distance from the screen's right edge to the item's left edge. Status items keep it when the screen's width
/// changes.
[[nodiscard]] float trayDistance(NSRect item, NSSize mainScreen) noexcept;

/// The item's frame, moved to its remembered distance from the screen's right edge when its reported place disagrees
/// with that by more than 50 points. A `distance` of 0 means that none has been remembered. Only x ever changes.
[[nodiscard]] NSRect heldFrame(NSRect item, float distance, NSSize mainScreen) noexcept;

/// Where the menu's anchor goes: its x is the item's left edge when the mouse is at most 30 points from that, else the
/// mouse's x rounded toward zero to a multiple of 12; its y is 5 points clear of the status bar. Beside a bar at the
/// left or right of its monitor it is x that is 5 points clear, and y is the item's top edge, or else the mouse's.
/// `item` is nothing when the item's place is unknown.
[[nodiscard]] NSPoint menuAnchor(const std::optional<NSRect> &item, NSPoint mouse, NSSize mainScreen,
                                 const StatusBar &bar) noexcept;

/// Where the menu opens, and the edge of the monitor from which it opens away.
struct MenuPlace {
    NSPoint anchor;
    StatusBar::Edge edge = StatusBar::Edge::Top;

    bool operator==(const MenuPlace &) const = default;
};

/// The place for a press whose position is all that the item's host has told. On the status bar it is menuAnchor()'s;
/// anywhere else it is the press itself, because not every panel is a window of the X server.
[[nodiscard]] MenuPlace placeAtPress(NSPoint press, NSSize mainScreen, const StatusBar &bar) noexcept;
