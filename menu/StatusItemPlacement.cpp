#include "menu/StatusItemPlacement.h"

#include <cmath>

namespace
{
constexpr float greatestMouseDistance = 30;
constexpr float mouseGrid = 12;
constexpr float gapToStatusBar = 5;
constexpr float leastDisagreement = 50;
} // namespace

float trayDistance(NSRect item, NSSize mainScreen) noexcept
{
    return mainScreen.width - item.origin.x;
}

NSRect heldFrame(NSRect item, float distance, NSSize mainScreen) noexcept
{
    const float rememberedX = mainScreen.width - distance;
    if (distance != 0 && std::abs(item.origin.x - rememberedX) > leastDisagreement) {
        item.origin.x = rememberedX;
    }
    return item;
}

NSPoint menuAnchor(const std::optional<NSRect> &item, NSPoint mouse, NSSize mainScreen, const StatusBar &bar) noexcept
{
    const bool useItem = item && std::abs(item->origin.x - mouse.x) <= greatestMouseDistance;
    const float distanceFromEdge = bar.thickness + gapToStatusBar;
    return {useItem ? item->origin.x : mouse.x - std::fmod(mouse.x, mouseGrid),
            bar.edge == StatusBar::Edge::Top ? mainScreen.height - distanceFromEdge : distanceFromEdge};
}
