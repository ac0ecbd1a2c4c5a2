#include "platform/linux/item/strip/StripPlacement.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace
{
constexpr double roomForButtons = 160; ///< In points.
}

int usualStripDistance(double ratio)
{
    return static_cast<int>(std::lround(roomForButtons * ratio));
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
