#include "platform/linux/item/strip/StripPlacement.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace
{
constexpr double roomForButtons = 160; ///< In points.
constexpr double binaryPlaces = 65'536;
} // namespace

int usualStripDistance(double ratio)
{
    return static_cast<int>(std::lround(roomForButtons * ratio));
}

std::optional<int> keptStripDistance(std::uint32_t distance, std::uint32_t keptRatio, double ratio)
{
    constexpr std::uint32_t widestScreen = 65'535;
    const double ratioThen = keptRatio / binaryPlaces;
    constexpr double smallestRatio = 0.1;
    constexpr double largestRatio = 100;
    if (distance > widestScreen || ratioThen < smallestRatio || ratioThen > largestRatio) {
        return std::nullopt;
    }
    return static_cast<int>(std::lround(distance * ratio / ratioThen));
}

std::uint32_t keptRatio(double ratio)
{
    return static_cast<std::uint32_t>(std::lround(ratio * binaryPlaces));
}

QRect stripPlace(const QRect &area, int side, int distance)
{
    const int left = area.x() + area.width() - side - distance;
    const int rightmost = std::max(area.x(), area.x() + area.width() - side);
    return {std::clamp(left, area.x(), rightmost), area.y(), side, side};
}

StripPress stripPress(QPoint moved, int dragDistance)
{
    const int along = std::abs(moved.x());
    const int away = std::abs(moved.y());
    if (std::max(along, away) < dragDistance) {
        return StripPress::Undecided;
    }
    return along >= away ? StripPress::Drag : StripPress::Open;
}
