#include "platform/screen/WindowStacking.h"

#include "platform/StatusBar.h"
#include "tests/platform/macos/FakeNativeWindows.h"
#include "tests/support/WaitUntil.h"

#include <QApplication>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::ElementsAre;

class MacWindowStacking : public testing::Test
{
protected:
    MacWindowStacking() { resetNativeWindows(); }
    ~MacWindowStacking() override { resetNativeWindows(); }

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

TEST_F(MacWindowStacking, LeavesWindowsThatAreNoneOfTheSystemsToQt)
{
    thereAreNativeWindows() = false;
    window.show();
    QWidget other;
    other.show();
    bringToFront(window);
    bringToFrontWithKeyboard(window);
    keepAtStatusLevel(window);
    EXPECT_THAT(toldNativeWindows(), ElementsAre());
    EXPECT_TRUE(waitUntil([this] { return QApplication::activeWindow() == &window; }));
}

TEST(MacStatusBar, HasTheUsualThicknessWhereThereIsNoMenuBarOfTheSystems)
{
    thereAreNativeWindows() = false;
    EXPECT_EQ(StatusBar::around({{100, 100}, {22, 22}}), (StatusBar{StatusBar::Edge::Top, 22}));
    resetNativeWindows();
}

TEST(MacStatusBar, IsAtTheTopAsThickAsTheSystemSays)
{
    EXPECT_EQ(StatusBar::around({{100, 100}, {22, 22}}), (StatusBar{StatusBar::Edge::Top, 24}));
}
