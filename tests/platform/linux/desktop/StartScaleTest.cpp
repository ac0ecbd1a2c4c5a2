#include "platform/linux/desktop/StartScale.h"

#include <gtest/gtest.h>

TEST(XftDpi, IsFoundAmongTheXResources)
{
    EXPECT_EQ(xftDpi("Xft.dpi:\t144\n"), 144);
    EXPECT_EQ(xftDpi("*customization:\t-color\nXft.antialias:\t1\nXft.dpi: 120.5 \nXft.hinting:\t1\n"), 120.5);
    EXPECT_EQ(xftDpi("Xft.dpi:96"), 96) << "without the end of its line";
}

TEST(XftDpi, IsZeroWhereItIsNotSetOrNoNumberOfDots)
{
    for (const char *resources :
         {"", "Xft.dpi", "Xft.dpi:", "Xft.dpi: many", "Xft.dpi: 0", "Xft.dpi: -96", "Xft.dpi: nan", "Xft.dpi: inf",
          "Xft.dpi: 1e9", "OtherXft.dpi: 96", "Xft.dpi.x: 96"}) {
        EXPECT_EQ(xftDpi(resources), 0) << resources;
    }
}
