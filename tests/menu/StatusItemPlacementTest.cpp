#include "menu/StatusItemPlacement.h"

#include <gtest/gtest.h>

namespace
{
constexpr NSSize screen{1440, 900};
constexpr StatusBar topBar{StatusBar::Edge::Top, 32, {}};
constexpr StatusBar bottomBar{StatusBar::Edge::Bottom, 32, {}};
constexpr StatusBar leftBar{StatusBar::Edge::Left, 48, {}};
constexpr StatusBar rightBar{StatusBar::Edge::Right, 48, {}};

/// To the right of the main screen and lower, its bottom 300 points below the main screen's.
constexpr NSRect second{{1440, -300}, {1024, 768}};

constexpr StatusBar onSecond(StatusBar::Edge edge, float thickness)
{
    return {edge, thickness, second};
}

constexpr NSRect itemAt(float x)
{
    return {{x, 868}, {22, 22}};
}
} // namespace

TEST(TrayDistance, IsCountedFromTheScreensRightEdgeToTheItemsLeftEdge)
{
    EXPECT_EQ(trayDistance(itemAt(1320), screen), 120);
}

TEST(HeldFrame, MovesTheItemToItsRememberedDistanceWhenTheyDisagreeByMoreThanFiftyPoints)
{
    EXPECT_EQ(heldFrame(itemAt(1200), 120, screen).origin.x, 1320); // 120 apart
    EXPECT_EQ(heldFrame(itemAt(1290), 120, screen).origin.x, 1290); // 30 apart
    EXPECT_EQ(heldFrame(itemAt(1270), 120, screen).origin.x, 1270); // 50 apart: not more than 50
    EXPECT_EQ(heldFrame(itemAt(1269), 120, screen).origin.x, 1320); // 51 apart
    EXPECT_EQ(heldFrame(itemAt(1371), 120, screen).origin.x, 1320); // to the right as well
}

TEST(HeldFrame, TakesADistanceOfZeroForNoneRemembered)
{
    EXPECT_EQ(heldFrame(itemAt(1200), 0, screen), itemAt(1200));
}

TEST(HeldFrame, ChangesNothingButX)
{
    const NSRect held = heldFrame({{10, 20}, {30, 40}}, 120, screen);
    EXPECT_EQ(held, (NSRect{{1320, 20}, {30, 40}}));
}

TEST(MenuAnchor, StandsAtTheItemsLeftEdgeWhenTheMouseIsNear)
{
    EXPECT_EQ(menuAnchor(itemAt(1200), {1210, 880}, screen, topBar).x, 1200);
    EXPECT_EQ(menuAnchor(itemAt(1200), {1230, 880}, screen, topBar).x, 1200); // exactly 30 away
    EXPECT_EQ(menuAnchor(itemAt(1200), {1170, 880}, screen, topBar).x, 1200);
}

TEST(MenuAnchor, RoundsTheMouseDownToTheGridWhenTheItemIsFarAway)
{
    EXPECT_EQ(menuAnchor(itemAt(1200), {1231, 880}, screen, topBar).x, 1224);
}

TEST(MenuAnchor, RoundsTheMouseDownToTheGridWhenTheItemsPlaceIsUnknown)
{
    EXPECT_EQ(menuAnchor({}, {1000, 880}, screen, topBar).x, 996);
    EXPECT_EQ(menuAnchor({}, {1010, 880}, screen, topBar).x, 1008);
    EXPECT_EQ(menuAnchor({}, {1007.5F, 880}, screen, topBar).x, 996);
    EXPECT_EQ(menuAnchor({}, {0, 880}, screen, topBar).x, 0);
}

TEST(MenuAnchor, RoundsTowardZeroLeftOfTheMainScreenToo)
{
    EXPECT_EQ(menuAnchor({}, {-10, 880}, screen, topBar).x, 0);
    EXPECT_EQ(menuAnchor({}, {-13, 880}, screen, topBar).x, -12);
}

TEST(MenuAnchor, StaysFivePointsClearOfTheStatusBar)
{
    EXPECT_EQ(menuAnchor(itemAt(1200), {1200, 880}, screen, topBar).y, 900 - 32 - 5);
    EXPECT_EQ(menuAnchor(itemAt(1200), {1200, 10}, screen, bottomBar).y, 32 + 5);
}

TEST(MenuAnchor, StandsBesideABarAtASideAtTheItemsTopEdge)
{
    const NSRect inLeftBar{{13, 700}, {22, 22}};
    EXPECT_EQ(menuAnchor(inLeftBar, {20, 710}, screen, leftBar), (NSPoint{48 + 5, 722}));
    const NSRect inRightBar{{1405, 700}, {22, 22}};
    EXPECT_EQ(menuAnchor(inRightBar, {1410, 710}, screen, rightBar), (NSPoint{1440 - 48 - 5, 722}));
}

TEST(MenuAnchor, StandsBesideABarAtASideAtTheMouseWhenTheItemsPlaceIsUnknown)
{
    EXPECT_EQ(menuAnchor({}, {20, 711}, screen, leftBar), (NSPoint{48 + 5, 711}));
    EXPECT_EQ(menuAnchor({}, {1410, 711}, screen, rightBar), (NSPoint{1440 - 48 - 5, 711}));
}

TEST(MenuAnchor, StaysOnTheMonitorOfTheBar)
{
    using Edge = StatusBar::Edge;
    const NSRect item{{2000, 440}, {22, 22}};
    EXPECT_EQ(menuAnchor(item, {2010, 450}, screen, onSecond(Edge::Top, 30)), (NSPoint{2000, 468 - 30 - 5}));
    EXPECT_EQ(menuAnchor(item, {2010, 450}, screen, onSecond(Edge::Bottom, 30)), (NSPoint{2000, -300 + 30 + 5}));
    EXPECT_EQ(menuAnchor(item, {2010, 450}, screen, onSecond(Edge::Left, 40)), (NSPoint{1440 + 40 + 5, 462}));
    EXPECT_EQ(menuAnchor(item, {2010, 450}, screen, onSecond(Edge::Right, 40)), (NSPoint{2464 - 40 - 5, 462}));
}

TEST(MenuAnchor, LiesBelowTheOriginWithoutAMainScreen)
{
    EXPECT_EQ(menuAnchor({}, {0, 0}, {0, 0}, {StatusBar::Edge::Top, 22, {}}).y, -27);
}

TEST(PlaceAtPress, IsClearOfTheStatusBarForAPressOnIt)
{
    using Edge = StatusBar::Edge;
    EXPECT_EQ(placeAtPress({1010, 880}, screen, topBar), (MenuPlace{{1008, 900 - 32 - 5}, Edge::Top}));
    EXPECT_EQ(placeAtPress({1010, 868}, screen, topBar), (MenuPlace{{1008, 900 - 32 - 5}, Edge::Top}));
    EXPECT_EQ(placeAtPress({1010, 10}, screen, bottomBar), (MenuPlace{{1008, 32 + 5}, Edge::Bottom}));
    EXPECT_EQ(placeAtPress({48, 500}, screen, leftBar), (MenuPlace{{48 + 5, 500}, Edge::Left}));
    EXPECT_EQ(placeAtPress({1392, 500}, screen, rightBar), (MenuPlace{{1440 - 48 - 5, 500}, Edge::Right}));
    EXPECT_EQ(placeAtPress({2004, 440}, screen, onSecond(Edge::Top, 30)), (MenuPlace{{2004, 468 - 30 - 5}, Edge::Top}));
}

TEST(PlaceAtPress, IsThePressAnywhereElseAndOpensAwayFromTheNearerEdge)
{
    using Edge = StatusBar::Edge;
    EXPECT_EQ(placeAtPress({1010, 867}, screen, topBar), (MenuPlace{{1010, 867}, Edge::Top}));
    EXPECT_EQ(placeAtPress({1010, 10}, screen, topBar), (MenuPlace{{1010, 10}, Edge::Bottom}));
    EXPECT_EQ(placeAtPress({1010, 880}, screen, bottomBar), (MenuPlace{{1010, 880}, Edge::Top}));
    EXPECT_EQ(placeAtPress({49, 500}, screen, leftBar), (MenuPlace{{49, 500}, Edge::Top}));
    EXPECT_EQ(placeAtPress({1391, 500}, screen, rightBar), (MenuPlace{{1391, 500}, Edge::Top}));
    EXPECT_EQ(placeAtPress({2004, -290}, screen, onSecond(Edge::Top, 30)), (MenuPlace{{2004, -290}, Edge::Bottom}));
    EXPECT_EQ(placeAtPress({2004, 90}, screen, onSecond(Edge::Bottom, 30)), (MenuPlace{{2004, 90}, Edge::Top}));
}
