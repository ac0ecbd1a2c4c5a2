#include "platform/linux/screen/windows/PanelBar.h"

#include <gtest/gtest.h>

namespace
{

using Edge = StatusBar::Edge;

constexpr QRect screen(0, 0, 1280, 800);
constexpr QRect second(1280, 200, 1024, 768); ///< To the right of it, and lower.
constexpr QRect nowhere;

StatusBar bar(Edge edge, float thickness)
{
    return {.edge = edge, .thickness = thickness};
}

struct WindowRow {
    const char *what;
    QRect window;
    QRect monitor;
    double ratio;
    StatusBar bar;
};

struct ItemRow {
    const char *what;
    QRect window;
    QRect item;
    StatusBar bar;
};

TEST(PanelBar, IsALongAndThinWindowAtTheEdgeThatItLiesBeside)
{
    const WindowRow rows[] = {
        {"at the top", {0, 0, 1280, 32}, screen, 1, bar(Edge::Top, 32)},
        {"short", {400, 0, 480, 27}, screen, 1, bar(Edge::Top, 27)},
        {"at the bottom", {0, 768, 1280, 32}, screen, 1, bar(Edge::Bottom, 32)},
        {"at the left", {0, 0, 48, 800}, screen, 1, bar(Edge::Left, 48)},
        {"at the right", {1232, 0, 48, 800}, screen, 1, bar(Edge::Right, 48)},
        {"a little off the top edge", {10, 6, 1260, 30}, screen, 1, bar(Edge::Top, 36)},
        {"a little off the bottom edge", {10, 764, 1260, 30}, screen, 1, bar(Edge::Bottom, 36)},
        {"a little off the left edge", {6, 10, 40, 780}, screen, 1, bar(Edge::Left, 46)},
        {"a little off the right edge", {1234, 10, 40, 780}, screen, 1, bar(Edge::Right, 46)},
        {"as thick as a quarter of the screen", {0, 0, 1280, 200}, screen, 1, bar(Edge::Top, 200)},
        {"as wide as a quarter of the screen", {0, 0, 320, 800}, screen, 1, bar(Edge::Left, 320)},
        {"on a fine screen", {0, 0, 2560, 64}, {0, 0, 2560, 1600}, 2, bar(Edge::Top, 32)},
        {"at the top of the second monitor", {1280, 200, 1024, 30}, second, 1, bar(Edge::Top, 30)},
        {"at the bottom of the second monitor", {1280, 938, 1024, 30}, second, 1, bar(Edge::Bottom, 30)},
        {"at the left of the second monitor", {1280, 200, 40, 768}, second, 1, bar(Edge::Left, 40)},
        {"at the right of the second monitor", {2264, 200, 40, 768}, second, 1, bar(Edge::Right, 40)},
    };
    for (const WindowRow &row : rows) {
        EXPECT_EQ(panelBar(row.window, nowhere, row.monitor, {}, row.ratio), row.bar) << row.what;
    }
}

TEST(PanelBar, ReachesAsFarAsTheItemUnderAnyOtherWindow)
{
    const ItemRow rows[] = {
        {"a shell that fills the screen, its bar at the top", screen, {1200, 3, 24, 24}, bar(Edge::Top, 27)},
        {"its bar at the bottom", screen, {1200, 770, 24, 24}, bar(Edge::Bottom, 30)},
        {"more than a quarter of the screen", {0, 0, 1280, 201}, {1200, 5, 22, 22}, bar(Edge::Top, 27)},
        {"wider than a quarter of the screen", {0, 0, 321, 800}, {100, 5, 22, 22}, bar(Edge::Top, 27)},
        {"the item by itself in the corner", {1258, 0, 22, 22}, {1258, 0, 22, 22}, bar(Edge::Top, 22)},
        {"a smaller one", {1264, 0, 16, 16}, {1264, 0, 16, 16}, bar(Edge::Top, 22)},
        {"no window", nowhere, {1200, 770, 22, 22}, bar(Edge::Bottom, 30)},
    };
    for (const ItemRow &row : rows) {
        EXPECT_EQ(panelBar(row.window, row.item, screen, {}, 1), row.bar) << row.what;
    }
    EXPECT_EQ(panelBar(second, {2000, 938, 24, 24}, second, {}, 1), bar(Edge::Bottom, 30)) << "on the second monitor";
    EXPECT_EQ(panelBar({0, 0, 2560, 1600}, {2400, 6, 48, 48}, {0, 0, 2560, 1600}, {}, 2), bar(Edge::Top, 27))
        << "on a fine screen";
}

struct WorkAreaRow {
    const char *what;
    QRect item;
    QRect monitor;
    QRect workArea;
    StatusBar bar;
};

TEST(PanelBar, IsWhatTheWorkAreaLeavesUnderTheItemOfAShellThatFillsTheScreen)
{
    const WorkAreaRow rows[] = {
        {"at the top", {1200, 4, 24, 24}, screen, {0, 32, 1280, 768}, bar(Edge::Top, 32)},
        {"at the bottom", {1200, 768, 24, 24}, screen, {0, 0, 1280, 760}, bar(Edge::Bottom, 40)},
        {"at the left", {18, 700, 24, 24}, screen, {60, 0, 1220, 800}, bar(Edge::Left, 60)},
        {"at the right", {1238, 10, 24, 24}, screen, {0, 0, 1220, 800}, bar(Edge::Right, 60)},
        {"at the top of the second monitor", {2000, 203, 24, 24}, second, {1280, 230, 1024, 738}, bar(Edge::Top, 30)},
        {"at its bottom", {2000, 941, 24, 24}, second, {1280, 200, 1024, 738}, bar(Edge::Bottom, 30)},
        {"at its left", {1288, 500, 24, 24}, second, {1320, 200, 984, 768}, bar(Edge::Left, 40)},
        {"at its right", {2272, 500, 24, 24}, second, {1280, 200, 984, 768}, bar(Edge::Right, 40)},
        {"the one of two bars that has the item", {18, 700, 24, 24}, screen, {60, 32, 1220, 768}, bar(Edge::Left, 60)},
        {"the other one of them", {700, 4, 24, 24}, screen, {60, 32, 1220, 768}, bar(Edge::Top, 32)},
        {"as wide as a quarter of the screen", {50, 100, 24, 24}, screen, {320, 0, 960, 800}, bar(Edge::Left, 320)},
        {"the mouse alone", {20, 700, 0, 0}, screen, {60, 0, 1220, 800}, bar(Edge::Left, 60)},
        {"the mouse at the bar's last line", {700, 31, 0, 0}, screen, {0, 32, 1280, 768}, bar(Edge::Top, 32)},
        {"more than half of the item on it", {47, 10, 24, 24}, screen, {60, 0, 1220, 800}, bar(Edge::Left, 60)},
    };
    for (const WorkAreaRow &row : rows) {
        EXPECT_EQ(panelBar(row.monitor, row.item, row.monitor, row.workArea, 1), row.bar) << row.what;
        EXPECT_EQ(panelBar(nowhere, row.item, row.monitor, row.workArea, 1), row.bar) << row.what << ", no X window";
    }
    const QRect fine(0, 0, 2560, 1600);
    EXPECT_EQ(panelBar(fine, {36, 1400, 48, 48}, fine, QRect(120, 0, 2440, 1600), 2), bar(Edge::Left, 60))
        << "on a fine screen";
}

TEST(PanelBar, IsAsWithoutAWorkAreaWhereThatLeavesNoBarUnderTheItem)
{
    const WorkAreaRow rows[] = {
        {"the bar is at another edge", {1200, 3, 24, 24}, screen, {60, 0, 1220, 800}, bar(Edge::Top, 27)},
        {"less than half of the item on it", {49, 10, 24, 24}, screen, {60, 0, 1220, 800}, bar(Edge::Top, 34)},
        {"the mouse beside the bar", {700, 32, 0, 0}, screen, {0, 32, 1280, 768}, bar(Edge::Top, 22)},
        {"the mouse on no monitor", {-40, 300, 0, 0}, screen, {60, 0, 1220, 800}, bar(Edge::Top, 22)},
        {"more than a quarter of the screen", {100, 5, 22, 22}, screen, {321, 0, 959, 800}, bar(Edge::Top, 27)},
        {"all of the screen", {1200, 3, 24, 24}, screen, screen, bar(Edge::Top, 27)},
        {"more than the screen", {1200, 0, 24, 24}, screen, {-100, -100, 1480, 1000}, bar(Edge::Top, 24)},
        {"an empty one", {1200, 3, 24, 24}, screen, {0, 0, 0, 0}, bar(Edge::Top, 27)},
    };
    for (const WorkAreaRow &row : rows) {
        EXPECT_EQ(panelBar(row.monitor, row.item, row.monitor, row.workArea, 1), row.bar) << row.what;
    }
    const QRect alone(1258, 32, 22, 22);
    EXPECT_EQ(panelBar(alone, alone, screen, QRect(0, 32, 1280, 768), 1), bar(Edge::Top, 54)) << "under a shell's bar";
    EXPECT_EQ(panelBar({0, 0, 48, 800}, {13, 5, 22, 22}, screen, QRect(0, 32, 1280, 768), 1), bar(Edge::Left, 48))
        << "a panel that is seen";
}

TEST(PanelBar, Is22PointsAtTheTopWhereNothingIsKnown)
{
    EXPECT_EQ(panelBar(nowhere, nowhere, screen, {}, 1), bar(Edge::Top, 22));
    EXPECT_EQ(panelBar(screen, nowhere, screen, {}, 1), bar(Edge::Top, 22)) << "under a window that is no panel";
    EXPECT_EQ(panelBar(nowhere, {100, 500, 22, 22}, nowhere, {}, 1), bar(Edge::Top, 22)) << "without a screen";
}

} // namespace
