#include "notify/popup/RoundedRegion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace
{

/// Whether the middle of the pixel lies within the rounded rectangle, asked of each corner by itself.
bool isWithin(QPoint pixel, const QRect &frame, double radius)
{
    const double x = pixel.x() + 0.5 - frame.left();
    const double y = pixel.y() + 0.5 - frame.top();
    if (x < 0 || y < 0 || x > frame.width() || y > frame.height()) {
        return false;
    }
    const double besideCentre = x < radius ? radius - x : std::max(0.0, x - (frame.width() - radius));
    const double aboveCentre = y < radius ? radius - y : std::max(0.0, y - (frame.height() - radius));
    return besideCentre == 0 || aboveCentre == 0 || std::hypot(besideCentre, aboveCentre) <= radius;
}

class RoundedRegion : public testing::TestWithParam<std::tuple<QRect, int>>
{
};

TEST_P(RoundedRegion, HasThePixelsWhoseMiddleLiesWithinTheShape)
{
    const auto [frame, radius] = GetParam();
    const QRegion region = roundedRegion(frame, radius);
    QRegion pixelByPixel;
    for (int y = frame.top() - 2; y <= frame.bottom() + 2; ++y) {
        for (int x = frame.left() - 2; x <= frame.right() + 2; ++x) {
            const bool expected = isWithin({x, y}, frame, radius);
            EXPECT_EQ(region.contains(QPoint(x, y)), expected) << x << ", " << y;
            pixelByPixel += expected ? QRect(x, y, 1, 1) : QRect();
        }
    }
    EXPECT_EQ(region, pixelByPixel) << "the same pixels in other parts";
}

INSTANTIATE_TEST_SUITE_P(Frames, RoundedRegion,
                         testing::Values(std::tuple(QRect(0, 0, 60, 40), 9), std::tuple(QRect(3, 3, 54, 34), 6),
                                         std::tuple(QRect(-5, 7, 61, 33), 4), std::tuple(QRect(0, 0, 30, 20), 1),
                                         std::tuple(QRect(0, 0, 12, 12), 6), std::tuple(QRect(0, 0, 13, 12), 6),
                                         std::tuple(QRect(0, 0, 30, 20), 0), std::tuple(QRect(4, 4, 1, 1), 0)));

TEST(RoundedRegionTest, TakesARadiusThatIsTooLargeForHalfTheShorterSide)
{
    EXPECT_EQ(roundedRegion(QRect(0, 0, 40, 20), 100), roundedRegion(QRect(0, 0, 40, 20), 10));
    EXPECT_EQ(roundedRegion(QRect(0, 0, 40, 20), -3), QRegion(0, 0, 40, 20));
}

TEST(RoundedRegionTest, OfAnEmptyFrameIsEmpty)
{
    EXPECT_TRUE(roundedRegion(QRect(), 6).isEmpty());
    EXPECT_TRUE(roundedRegion(QRect(0, 0, -4, 10), 6).isEmpty());
}

} // namespace
