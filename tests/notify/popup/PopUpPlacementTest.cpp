#include "notify/popup/PopUpPlacement.h"

#include <gtest/gtest.h>

TEST(PopUpOrigin, KeepsTenPointsFromTheRightAndThirtyFromTheTop)
{
    EXPECT_EQ(popUpOrigin({1440, 900}, {400, 200}, 0), (NSPoint{1030, 670}));
    EXPECT_EQ(popUpOrigin({1280, 800}, {403, 194.5F}, 0), (NSPoint{867, 575.5F}));
}

TEST(PopUpOrigin, IsThirtyPointsFromTheTopUnderAPanelNoTallerThanThatAndRightUnderATallerOne)
{
    for (const float panel : {0.F, 22.F, 29.F, 30.F}) {
        EXPECT_EQ(popUpOrigin({1440, 900}, {400, 200}, panel), (NSPoint{1030, 670})) << panel;
    }
    EXPECT_EQ(popUpOrigin({1440, 900}, {400, 200}, 30.5F), (NSPoint{1030, 669.5F}));
    EXPECT_EQ(popUpOrigin({1440, 900}, {400, 200}, 48), (NSPoint{1030, 652}));
}

TEST(PopUpOrigin, LiesBeyondTheEdgesOfAScreenThatIsTooSmall)
{
    EXPECT_EQ(popUpOrigin({320, 200}, {400, 300}, 0), (NSPoint{-90, -130}));
    EXPECT_EQ(popUpOrigin({0, 0}, {400, 200}, 0), (NSPoint{-410, -230}));
}

TEST(PopUpOrigin, TakesAMissingPopUpAsOneWithoutSize)
{
    EXPECT_EQ(popUpOrigin({1440, 900}, {}, 0), (NSPoint{1430, 870}));
}
