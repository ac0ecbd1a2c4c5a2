#include "platform/linux/screen/windows/Monitors.h"

#include <gtest/gtest.h>

namespace
{

TEST(Monitors, HaveARectangleOfWhichAnyPartLiesOnOneOfThem)
{
    const std::vector<QRect> monitors{{0, 0, 1280, 800}, {1280, 200, 1024, 768}};
    EXPECT_TRUE(isOnAMonitor({100, 100, 22, 22}, monitors));
    EXPECT_TRUE(isOnAMonitor({2000, 900, 22, 22}, monitors));
    EXPECT_TRUE(isOnAMonitor({-21, 300, 22, 22}, monitors)) << "by its last column";
    EXPECT_FALSE(isOnAMonitor({-22, 300, 22, 22}, monitors));
    EXPECT_FALSE(isOnAMonitor({100, 800, 22, 22}, monitors));
    EXPECT_FALSE(isOnAMonitor({1500, 100, 22, 22}, monitors)) << "above the second, where the X screen shows nothing";
}

TEST(Monitors, HaveAnyRectangleWhileNoneIsKnown)
{
    EXPECT_TRUE(isOnAMonitor({-500, -500, 22, 22}, {}));
}

} // namespace
