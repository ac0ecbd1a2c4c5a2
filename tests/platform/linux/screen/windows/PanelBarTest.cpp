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
        EXPECT_EQ(panelBar(row.window, nowhere, row.monitor, row.ratio), row.bar) << row.what;
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
        EXPECT_EQ(panelBar(row.window, row.item, screen, 1), row.bar) << row.what;
    }
    EXPECT_EQ(panelBar(second, {2000, 938, 24, 24}, second, 1), bar(Edge::Bottom, 30)) << "on the second monitor";
    EXPECT_EQ(panelBar({0, 0, 2560, 1600}, {2400, 6, 48, 48}, {0, 0, 2560, 1600}, 2), bar(Edge::Top, 27))
        << "on a fine screen";
}

TEST(PanelBar, Is22PointsAtTheTopWhereNothingIsKnown)
{
    EXPECT_EQ(panelBar(nowhere, nowhere, screen, 1), bar(Edge::Top, 22));
    EXPECT_EQ(panelBar(screen, nowhere, screen, 1), bar(Edge::Top, 22)) << "under a window that is no panel";
    EXPECT_EQ(panelBar(nowhere, {100, 500, 22, 22}, nowhere, 1), bar(Edge::Top, 22)) << "without a screen";
}

} // namespace
