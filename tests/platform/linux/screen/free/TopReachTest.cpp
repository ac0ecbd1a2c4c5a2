#include "platform/linux/screen/free/TopReach.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

constexpr QRect monitor(0, 0, 1280, 800);
constexpr QRect lower(0, 800, 1280, 800);
/// Where a pop-up of 403 pixels would begin.
constexpr QRect column(867, 0, 403, 30);
constexpr QRect lowerColumn(867, 800, 403, 30);

struct ReachRow {
    const char *what;
    std::optional<QRect> workArea;
    std::vector<QRect> windows;
    std::optional<QRect> item;
    int reach;
};

TEST(TopReach, IsThatOfThePanelOrOfTheItemByItself)
{
    const QRect noPanel = monitor;
    const QRect underAPanel(0, 48, 1280, 752);
    const ReachRow rows[] = {
        {"nothing", std::nullopt, {}, {}, 0},
        {"a window manager, and no panel", noPanel, {}, {}, 0},
        {"a panel", underAPanel, {}, {}, 48},
        {"panels at other edges", QRect(48, 0, 1184, 752), {}, {}, 0},
        {"a panel as tall as a quarter of the screen", QRect(0, 200, 1280, 600), {}, {}, 200},
        {"what no panel takes", QRect(0, 201, 1280, 599), {}, {}, 0},
        {"a panel without a window manager", std::nullopt, {{0, 0, 1280, 48}}, {}, 48},
        {"one off the edge", std::nullopt, {{10, 6, 1260, 40}}, {}, 46},
        {"one at the bottom", std::nullopt, {{0, 752, 1280, 48}}, {}, 0},
        {"one at the right", std::nullopt, {{1232, 0, 48, 800}}, {}, 0},
        {"the taller of two", std::nullopt, {{0, 0, 640, 60}, {640, 0, 640, 48}}, {}, 60},
        {"a window that is none", std::nullopt, {monitor}, {}, 0},
        {"a small one", std::nullopt, {{900, 0, 40, 60}}, {}, 0},
        {"a long one where a window manager knows of no panel", noPanel, {{0, 0, 1280, 48}}, {}, 0},
        {"the item, on a fine screen", std::nullopt, {}, QRect(1098, 0, 48, 48), 48},
        {"the item under a panel", underAPanel, {}, QRect(1098, 48, 22, 22), 70},
        {"the item to the left", std::nullopt, {}, QRect(819, 0, 48, 48), 0},
        {"the item in the column's first pixel", std::nullopt, {}, QRect(820, 0, 48, 48), 48},
        {"the item in its last one", std::nullopt, {}, QRect(1269, 0, 48, 48), 48},
        {"the item to the right", std::nullopt, {}, QRect(1270, 0, 48, 48), 0},
    };
    for (const ReachRow &row : rows) {
        EXPECT_EQ(topReach(monitor, column, row.workArea, row.windows, row.item), row.reach) << row.what;
    }
}

TEST(TopReach, CountsFromTheMonitorsTop)
{
    EXPECT_EQ(topReach(lower, lowerColumn, QRect(0, 848, 1280, 752), {}, {}), 48);
    EXPECT_EQ(topReach(lower, lowerColumn, QRect(0, 48, 1280, 1552), {}, {}), 0) << "a panel of the upper one";
    EXPECT_EQ(topReach(monitor, column, QRect(0, 848, 1280, 752), {}, {}), 0) << "a panel of the lower one";
    EXPECT_EQ(topReach(lower, lowerColumn, {}, std::vector<QRect>{{0, 800, 1280, 40}}, {}), 40);
    EXPECT_EQ(topReach(lower, lowerColumn, {}, {}, QRect(1098, 800, 48, 48)), 48);
}

} // namespace
