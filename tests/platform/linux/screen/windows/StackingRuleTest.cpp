#include "platform/linux/screen/windows/StackingRule.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

constexpr WindowAbove ordinary(xcb_window_t window)
{
    return {.window = window, .isShown = true};
}

constexpr WindowAbove maximised(xcb_window_t window)
{
    return {.window = window, .isShown = true, .fillsTheScreen = true};
}

constexpr WindowAbove hidden(xcb_window_t window)
{
    return {.window = window};
}

constexpr WindowAbove menu(xcb_window_t window)
{
    return {.window = window, .isShown = true, .isOverrideRedirect = true};
}

constexpr WindowAbove locker(xcb_window_t window)
{
    return {.window = window, .isShown = true, .isOverrideRedirect = true, .fillsTheScreen = true};
}

constexpr WindowAbove lockerAtRest(xcb_window_t window)
{
    return {.window = window, .isOverrideRedirect = true, .fillsTheScreen = true};
}

struct StackingRow {
    const char *sentence;
    std::vector<WindowAbove> aboveOurs; ///< The lowest first.
    std::optional<xcb_window_t> risesAbove;
};

TEST(StackingRule, HasOursAboveWhatAManagerWouldManageAndNeverAboveALocker)
{
    const StackingRow rows[] = {
        {"it is the topmost already", {}, {}},
        {"another window came up", {ordinary(1)}, 1},
        {"several did", {ordinary(1), maximised(2), ordinary(3)}, 3},
        {"one of them has gone again", {ordinary(1), hidden(2)}, 1},
        {"none of them is shown", {hidden(1), hidden(2)}, {}},
        {"a menu is open", {menu(1)}, {}},
        {"a menu is open on a window that came up", {ordinary(1), menu(2)}, 1},
        {"a window came up over a menu", {menu(1), ordinary(2)}, 2},
        {"the screen is locked", {locker(1)}, {}},
        {"a window came up behind the locker", {ordinary(1), locker(2)}, 1},
        {"a window came up before the locker", {locker(1), ordinary(2)}, {}},
        {"and others behind it", {ordinary(1), ordinary(2), locker(3), ordinary(4)}, 2},
        {"the locker is not at work", {lockerAtRest(1), ordinary(2)}, 2},
    };
    for (const StackingRow &row : rows) {
        EXPECT_EQ(windowToRiseAbove(row.aboveOurs), row.risesAbove) << row.sentence;
    }
}

} // namespace
