#include "platform/linux/screen/PanelBar.h"

#include <gtest/gtest.h>

namespace
{

constexpr StatusBar none{StatusBar::Edge::Top, 22};

struct PanelRow {
    const char *what;
    QRect window;
    QRect screen;
    double ratio;
    StatusBar bar;
};

TEST(PanelBar, IsAHorizontalPanelAtTheTopOrBottomEdge)
{
    const QRect screen(0, 0, 1280, 800);
    const QRect second(1280, 200, 1280, 800);
    const PanelRow rows[] = {
        {"top panel", {0, 0, 1280, 32}, screen, 1, {StatusBar::Edge::Top, 32}},
        {"short top panel", {400, 0, 480, 27}, screen, 1, {StatusBar::Edge::Top, 27}},
        {"bottom panel", {0, 768, 1280, 32}, screen, 1, {StatusBar::Edge::Bottom, 32}},
        {"left panel", {0, 0, 48, 800}, screen, 1, none},
        {"right panel", {1232, 0, 48, 800}, screen, 1, none},
        {"full-screen window", {0, 0, 1280, 800}, screen, 1, none},
        {"large window at the top", {0, 0, 1280, 500}, screen, 1, none},
        {"large window at the bottom", {0, 300, 1280, 500}, screen, 1, none},
        {"a quarter of the screen", {0, 0, 1280, 200}, screen, 1, {StatusBar::Edge::Top, 200}},
        {"more than a quarter", {0, 0, 1280, 201}, screen, 1, none},
        {"window in the middle", {200, 200, 300, 100}, screen, 1, none},
        {"square icon in the corner", {1258, 0, 22, 22}, screen, 1, none},
        {"fine screen", {0, 0, 2560, 64}, {0, 0, 2560, 1600}, 2, {StatusBar::Edge::Top, 32}},
        {"main screen is not the first", {1280, 200, 1280, 30}, second, 1, {StatusBar::Edge::Top, 30}},
        {"panel of a neighbour at the same height", {1280, 0, 1920, 40}, screen, 1, {StatusBar::Edge::Top, 40}},
        {"panel of a neighbour at another height", {0, 0, 1280, 32}, second, 1, none},
        {"no window", {}, screen, 1, none},
        {"no screen", {0, 0, 1280, 32}, {}, 1, none},
    };
    for (const PanelRow &row : rows) {
        EXPECT_EQ(panelBar(row.window, row.screen, row.ratio), row.bar) << row.what;
    }
}

} // namespace
