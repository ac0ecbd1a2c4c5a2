#include "platform/screen/WindowStacking.h"

#include "platform/StatusBar.h"
#include "tests/platform/macos/FakeNativeWindows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::ElementsAre;

class MacWindowStacking : public testing::Test
{
protected:
    MacWindowStacking() { toldNativeWindows().clear(); }

    QWidget window;
};

} // namespace

TEST_F(MacWindowStacking, BringsAWindowToTheFrontWithoutMakingTheProgramTheActiveOne)
{
    bringToFront(window);
    bringToFront(window);
    EXPECT_THAT(toldNativeWindows(), ElementsAre("front", "front"));
}

TEST_F(MacWindowStacking, MakesItTheActiveOneWhenTheWindowIsToHaveTheKeyboard)
{
    bringToFrontWithKeyboard(window);
    EXPECT_THAT(toldNativeWindows(), ElementsAre("front", "activate"));
}

TEST_F(MacWindowStacking, KnowsTheLevelOfTheStatusItems)
{
    keepAtStatusLevel(window);
    EXPECT_THAT(toldNativeWindows(), ElementsAre("status level"));
}

TEST(MacStatusBar, IsAtTheTopAsThickAsTheSystemSays)
{
    EXPECT_EQ(StatusBar::around({{100, 100}, {22, 22}}), (StatusBar{StatusBar::Edge::Top, 24}));
}
