#include "notify/rules/CheckInterval.h"

#include <gtest/gtest.h>

#include <limits>

using namespace std::chrono_literals;

TEST(CheckInterval, IsAMinuteUnlessTheUserChoseALongerOne)
{
    EXPECT_EQ(checkInterval(2), 300s);
    EXPECT_EQ(checkInterval(3), 900s);
    EXPECT_EQ(checkInterval(4), 1800s);
    EXPECT_EQ(checkInterval(5), 3600s);
    for (const std::int32_t code : {0, 1, 6, -1, 100, std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(checkInterval(code), 60s) << code;
    }
}
