#pragma once

#include <cmath>

/// The side of the status item's square, where it may choose: in points, and in device pixels at a scale.
inline constexpr double itemSideInPoints = 22;

[[nodiscard]] inline int itemSide(double ratio)
{
    return static_cast<int>(std::lround(itemSideInPoints * ratio));
}
