#include "notify/popup/ScreenChange.h"

#include <gtest/gtest.h>

namespace
{

constexpr NSRect wholeScreen{{0, 0}, {1440, 900}};
constexpr NSPoint corner{1030, 670};

/// A pop-up where it belongs.
constexpr PopUpSituation settled{.prevScreenSize = wholeScreen.size,
                                 .screenSize = wholeScreen.size,
                                 .popUpScreen = wholeScreen,
                                 .mainScreen = wholeScreen,
                                 .wanted = corner,
                                 .actual = corner};

PopUpReaction reactionWith(void (*change)(PopUpSituation &))
{
    PopUpSituation situation = settled;
    change(situation);
    return reactionTo(situation);
}

} // namespace

TEST(ScreenChange, LeavesAPopUpWhereItBelongs)
{
    EXPECT_EQ(reactionTo(settled), PopUpReaction::Nothing);
}

TEST(ScreenChange, MovesThePopUpWhenTheScreensSizeHasChanged)
{
    const auto width = [](PopUpSituation &situation) { situation.screenSize.width = 1024; };
    const auto height = [](PopUpSituation &situation) { situation.screenSize.height = 768; };
    EXPECT_EQ(reactionWith(width), PopUpReaction::MoveThere);
    EXPECT_EQ(reactionWith(height), PopUpReaction::MoveThere);
}

TEST(ScreenChange, MovesThePopUpThenEvenIfItLiesOnNoScreenOrElsewhere)
{
    const auto change = [](PopUpSituation &situation) {
        situation.screenSize = {800, 600};
        situation.popUpScreen.reset();
        situation.actual = {0, 0};
    };
    EXPECT_EQ(reactionWith(change), PopUpReaction::MoveThere);
}

TEST(ScreenChange, MakesAPopUpOnNoScreenAnew)
{
    EXPECT_EQ(reactionWith([](PopUpSituation &situation) { situation.popUpScreen.reset(); }), PopUpReaction::Recreate);
}

TEST(ScreenChange, MakesAPopUpOnAnotherScreenAnewEvenIfItLiesWhereItBelongs)
{
    const auto right = [](PopUpSituation &situation) { situation.popUpScreen = NSRect{{1440, 0}, {1440, 900}}; };
    const auto above = [](PopUpSituation &situation) { situation.popUpScreen = NSRect{{0, 900}, {1440, 900}}; };
    const auto below = [](PopUpSituation &situation) { situation.popUpScreen = NSRect{{0, -900}, {1440, 900}}; };
    const auto left = [](PopUpSituation &situation) { situation.popUpScreen = NSRect{{-1, 0}, {1, 900}}; };
    EXPECT_EQ(reactionWith(right), PopUpReaction::Recreate);
    EXPECT_EQ(reactionWith(above), PopUpReaction::Recreate);
    EXPECT_EQ(reactionWith(below), PopUpReaction::Recreate);
    EXPECT_EQ(reactionWith(left), PopUpReaction::Recreate);
}

TEST(ScreenChange, MakesAPopUpThatSomethingMovedAnew)
{
    const auto byOnePoint = [](PopUpSituation &situation) { situation.actual.x -= 1; };
    const auto upwards = [](PopUpSituation &situation) { situation.actual.y += 0.5F; };
    EXPECT_EQ(reactionWith(byOnePoint), PopUpReaction::Recreate);
    EXPECT_EQ(reactionWith(upwards), PopUpReaction::Recreate);
}
