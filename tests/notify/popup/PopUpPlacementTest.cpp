#include "notify/popup/PopUpPlacement.h"

#include <gtest/gtest.h>

TEST(PopUpOrigin, KeepsTenPointsFromTheRightAndThirtyFromTheTop)
{
    EXPECT_EQ(popUpOrigin({1440, 900}, {400, 200}), (NSPoint{1030, 670}));
    EXPECT_EQ(popUpOrigin({1280, 800}, {403, 194.5F}), (NSPoint{867, 575.5F}));
}

TEST(PopUpOrigin, LiesBeyondTheEdgesOfAScreenThatIsTooSmall)
{
    EXPECT_EQ(popUpOrigin({320, 200}, {400, 300}), (NSPoint{-90, -130}));
    EXPECT_EQ(popUpOrigin({0, 0}, {400, 200}), (NSPoint{-410, -230}));
}

TEST(PopUpOrigin, TakesAMissingPopUpAsOneWithoutSize)
{
    EXPECT_EQ(popUpOrigin({1440, 900}, {}), (NSPoint{1430, 870}));
}
