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

/// A menu at a bar of 30 points on a second monitor, beside a main one of 1440 x 900.
struct SecondMonitorRow {
    NSRect monitor;
    StatusBar::Edge edge;
    NSPoint item; ///< Docked in the bar: its lower left corner.
    NSPoint anchor;
    NSPoint press; ///< On the bar, where its host tells no more than that.
    NSPoint anchorOfPress;
};

TEST(MenuPlace, IsOffTheBarOnItsOwnMonitorAtEachEdgeWhereverThatMonitorIs)
{
    using Edge = StatusBar::Edge;
    constexpr NSRect toTheRightAndLower{{1440, -300}, {1024, 768}};
    constexpr NSRect toTheLeft{{-1024, 0}, {1024, 768}};
    constexpr NSRect above{{200, 900}, {1024, 768}};
    constexpr NSRect below{{200, -768}, {1024, 768}};
    constexpr NSRect tallerToTheRight{{1440, -100}, {800, 1280}};
    const SecondMonitorRow rows[] = {
        {toTheRightAndLower, Edge::Top, {1940, 442}, {1940, 433}, {1940, 458}, {1932, 433}},
        {toTheRightAndLower, Edge::Bottom, {1940, -296}, {1940, -265}, {1940, -290}, {1932, -265}},
        {toTheRightAndLower, Edge::Left, {1444, 100}, {1475, 122}, {1450, 100}, {1475, 100}},
        {toTheRightAndLower, Edge::Right, {2438, 100}, {2429, 122}, {2454, 100}, {2429, 100}},
        {toTheLeft, Edge::Top, {-524, 742}, {-524, 733}, {-524, 758}, {-516, 733}},
        {toTheLeft, Edge::Bottom, {-524, 4}, {-524, 35}, {-524, 10}, {-516, 35}},
        {toTheLeft, Edge::Left, {-1020, 300}, {-989, 322}, {-1014, 300}, {-989, 300}},
        {toTheLeft, Edge::Right, {-26, 300}, {-35, 322}, {-10, 300}, {-35, 300}},
        {above, Edge::Top, {700, 1642}, {700, 1633}, {700, 1658}, {696, 1633}},
        {above, Edge::Bottom, {700, 904}, {700, 935}, {700, 910}, {696, 935}},
        {above, Edge::Left, {204, 1200}, {235, 1222}, {210, 1200}, {235, 1200}},
        {above, Edge::Right, {1198, 1200}, {1189, 1222}, {1214, 1200}, {1189, 1200}},
        {below, Edge::Top, {700, -26}, {700, -35}, {700, -10}, {696, -35}},
        {below, Edge::Bottom, {700, -764}, {700, -733}, {700, -758}, {696, -733}},
        {below, Edge::Left, {204, -400}, {235, -378}, {210, -400}, {235, -400}},
        {below, Edge::Right, {1198, -400}, {1189, -378}, {1214, -400}, {1189, -400}},
        {tallerToTheRight, Edge::Top, {1940, 1154}, {1940, 1145}, {1940, 1170}, {1932, 1145}},
        {tallerToTheRight, Edge::Bottom, {1940, -96}, {1940, -65}, {1940, -90}, {1932, -65}},
        {tallerToTheRight, Edge::Left, {1444, 1000}, {1475, 1022}, {1450, 1000}, {1475, 1000}},
        {tallerToTheRight, Edge::Right, {2214, 1000}, {2205, 1022}, {2230, 1000}, {2205, 1000}},
    };
    for (const SecondMonitorRow &row : rows) {
        SCOPED_TRACE(testing::Message() << "monitor at " << row.monitor.origin.x << ", " << row.monitor.origin.y
                                        << ", edge " << static_cast<int>(row.edge));
        const StatusBar bar{row.edge, 30, row.monitor};
        const NSRect item{row.item, {22, 22}};
        const NSPoint onItem{row.item.x + 11, row.item.y + 11};
        EXPECT_EQ(menuAnchor(item, onItem, screen, bar), row.anchor) << "docked";
        EXPECT_EQ(placeAtPress(row.press, screen, bar), (MenuPlace{row.anchorOfPress, row.edge})) << "by a proxy";
    }
}

TEST(MenuPlace, IsUnderTheItemThatStandsByItselfOnTheMainMonitorBesideAnother)
{
    const NSRect main{{}, screen};
    EXPECT_EQ(menuAnchor(NSRect{{1258, 878}, {22, 22}}, {1269, 889}, screen, {StatusBar::Edge::Top, 22, main}),
              (NSPoint{1258, 900 - 22 - 5}));
    EXPECT_EQ(menuAnchor(NSRect{{1258, 830}, {22, 22}}, {1269, 841}, screen, {StatusBar::Edge::Top, 70, main}),
              (NSPoint{1258, 900 - 70 - 5}))
        << "under a panel without a tray";
}

TEST(PlaceAtPress, IsThePressOffTheBarOfAnotherMonitorAndOpensAwayFromItsNearerEdge)
{
    using Edge = StatusBar::Edge;
    EXPECT_EQ(placeAtPress({-500, 100}, screen, {Edge::Top, 30, NSRect{{-1024, 0}, {1024, 768}}}),
              (MenuPlace{{-500, 100}, Edge::Bottom}));
    EXPECT_EQ(placeAtPress({700, 1600}, screen, {Edge::Bottom, 30, NSRect{{200, 900}, {1024, 768}}}),
              (MenuPlace{{700, 1600}, Edge::Top}));
    EXPECT_EQ(placeAtPress({700, -100}, screen, {Edge::Left, 30, NSRect{{200, -768}, {1024, 768}}}),
              (MenuPlace{{700, -100}, Edge::Top}));
    EXPECT_EQ(placeAtPress({1500, 0}, screen, {Edge::Right, 30, NSRect{{1440, -100}, {800, 1280}}}),
              (MenuPlace{{1500, 0}, Edge::Bottom}));
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
