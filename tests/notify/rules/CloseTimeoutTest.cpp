#include "notify/rules/CloseTimeout.h"

#include <gtest/gtest.h>

TEST(CloseTimeout, FollowsTheUsersSetting)
{
    for (const std::int32_t type : {1, 2, 3, 9}) {
        EXPECT_EQ(closeTimeout(type, 1), 15);
        EXPECT_EQ(closeTimeout(type, 2), 30);
        EXPECT_EQ(closeTimeout(type, 3), 60);
        EXPECT_EQ(closeTimeout(type, 4), -1);
        for (const std::int32_t code : {0, 5, -1}) {
            EXPECT_EQ(closeTimeout(type, code), 0) << code;
        }
    }
}

TEST(CloseTimeout, LetsUpdatesStayWhateverTheUserSet)
{
    for (const std::int32_t code : {0, 1, 2, 3, 4, 5}) {
        EXPECT_EQ(closeTimeout(0, code), -1) << code;
    }
}
