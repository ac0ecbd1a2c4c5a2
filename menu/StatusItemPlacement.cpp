#include "menu/StatusItemPlacement.h"

#include <cmath>

namespace
{
constexpr float maxMouseDistance = 30;
constexpr float mouseGrid = 12;
constexpr float gapToStatusBar = 5;
constexpr float minDisagreement = 50;
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
    const bool useItem = item && std::abs(item->origin.x - mouse.x) <= maxMouseDistance;
    const float distanceFromEdge = bar.thickness + gapToStatusBar;
    return {useItem ? item->origin.x : mouse.x - std::fmod(mouse.x, mouseGrid),
            bar.edge == StatusBar::Edge::Top ? mainScreen.height - distanceFromEdge : distanceFromEdge};
}

MenuPlace placeAtPress(NSPoint press, NSSize mainScreen, const StatusBar &bar) noexcept
{
    using Edge = StatusBar::Edge;
    const Edge nearer = press.y < mainScreen.height / 2 ? Edge::Bottom : Edge::Top;
    const float distance = nearer == Edge::Top ? mainScreen.height - press.y : press.y;
    if (nearer == bar.edge && distance <= bar.thickness) {
        return {menuAnchor(std::nullopt, press, mainScreen, bar), bar.edge};
    }
    return {press, nearer};
}
