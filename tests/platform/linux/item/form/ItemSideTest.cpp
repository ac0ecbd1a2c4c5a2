#include "platform/linux/item/form/ItemSide.h"

#include <gtest/gtest.h>

namespace
{

TEST(ItemSide, IsTwentyTwoPointsInWholePixels)
{
    EXPECT_EQ(itemSide(1), 22);
    EXPECT_EQ(itemSide(1.25), 28);
    EXPECT_EQ(itemSide(1.5), 33);
    EXPECT_EQ(itemSide(2), 44);
}

} // namespace
