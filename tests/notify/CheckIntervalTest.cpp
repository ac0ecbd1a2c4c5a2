#include "notify/CheckInterval.h"

#include <gtest/gtest.h>

#include <limits>

using namespace std::chrono_literals;

TEST(CheckInterval, IsAMinuteUnlessTheUserChoseALongerOne)
{
    EXPECT_EQ(checkInterval(2).interval, 300s);
    EXPECT_EQ(checkInterval(3).interval, 900s);
    EXPECT_EQ(checkInterval(4).interval, 1800s);
    EXPECT_EQ(checkInterval(5).interval, 3600s);
    for (const std::int32_t code : {0, 1, 6, -1, 100, std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(checkInterval(code).interval, 60s) << code;
    }
}

TEST(CheckInterval, ToleratesAHundredthOfItself)
{
    EXPECT_EQ(checkInterval(0).tolerance, 600ms);
    EXPECT_EQ(checkInterval(2).tolerance, 3s);
    EXPECT_EQ(checkInterval(5).tolerance, 36s);
}
