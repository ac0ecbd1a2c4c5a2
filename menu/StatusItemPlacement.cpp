#include "menu/StatusItemPlacement.h"

#include <cmath>

namespace
{
constexpr float maxMouseDistance = 30;
constexpr float mouseGrid = 12;
constexpr float gapToStatusBar = 5;
constexpr float minDisagreement = 50;

using Edge = StatusBar::Edge;

NSRect monitorOf(const StatusBar &bar, NSSize mainScreen)
{
    return bar.monitor.value_or(NSRect{{}, mainScreen});
}

float top(NSRect rect)
{
    return rect.origin.y + rect.size.height;
}

float right(NSRect rect)
{
    return rect.origin.x + rect.size.width;
}

/// How far `point` lies inside the monitor, from the edge that the bar is at.
float depth(NSPoint point, NSRect monitor, Edge edge)
{
    switch (edge) {
    case Edge::Top:
        return top(monitor) - point.y;
    case Edge::Bottom:
        return point.y - monitor.origin.y;
    case Edge::Left:
        return point.x - monitor.origin.x;
    case Edge::Right:
        return right(monitor) - point.x;
    }
    return 0;
}
} // namespace

float trayDistance(NSRect item, NSSize mainScreen) noexcept
{
    return mainScreen.width - item.origin.x;
}

NSRect heldFrame(NSRect item, float distance, NSSize mainScreen) noexcept
{
    const float rememberedX = mainScreen.width - distance;
    if (distance != 0 && std::abs(item.origin.x - rememberedX) > minDisagreement) {
        item.origin.x = rememberedX;
    }
    return item;
}

NSPoint menuAnchor(const std::optional<NSRect> &item, NSPoint mouse, NSSize mainScreen, const StatusBar &bar) noexcept
{
    const NSRect monitor = monitorOf(bar, mainScreen);
    const float distanceFromEdge = bar.thickness + gapToStatusBar;
    const bool useItem = item && std::abs(item->origin.x - mouse.x) <= maxMouseDistance;
    const float alongTheBar = useItem ? item->origin.x : mouse.x - std::fmod(mouse.x, mouseGrid);
    switch (bar.edge) {
    case Edge::Top:
        return {alongTheBar, top(monitor) - distanceFromEdge};
    case Edge::Bottom:
        return {alongTheBar, monitor.origin.y + distanceFromEdge};
    case Edge::Left:
        return {monitor.origin.x + distanceFromEdge, item ? top(*item) : mouse.y};
    case Edge::Right:
        return {right(monitor) - distanceFromEdge, item ? top(*item) : mouse.y};
    }
    return mouse;
}

MenuPlace placeAtPress(NSPoint press, NSSize mainScreen, const StatusBar &bar) noexcept
{
    const NSRect monitor = monitorOf(bar, mainScreen);
    if (depth(press, monitor, bar.edge) <= bar.thickness) {
        return {menuAnchor(std::nullopt, press, mainScreen, bar), bar.edge};
    }
    return {press, press.y < monitor.origin.y + monitor.size.height / 2 ? Edge::Bottom : Edge::Top};
}
