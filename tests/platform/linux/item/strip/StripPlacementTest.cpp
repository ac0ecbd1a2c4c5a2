#include "platform/linux/item/strip/StripPlacement.h"

#include <gtest/gtest.h>

namespace
{

constexpr QRect area(0, 0, 1280, 800);

TEST(StripPlace, IsAtTheTopOfTheWorkAreaThatFarFromItsRightEdge)
{
    EXPECT_EQ(stripPlace(area, 22, 160), QRect(1098, 0, 22, 22));
    EXPECT_EQ(stripPlace(area, 22, 0), QRect(1258, 0, 22, 22));
    EXPECT_EQ(stripPlace({0, 32, 1280, 768}, 22, 160), QRect(1098, 32, 22, 22)) << "under a panel at the top";
    EXPECT_EQ(stripPlace({48, 0, 1184, 800}, 22, 160), QRect(1050, 0, 22, 22)) << "between panels at the sides";
    EXPECT_EQ(stripPlace({1280, 200, 1024, 768}, 44, 320), QRect(1940, 200, 44, 44)) << "on another monitor";
}

TEST(StripPlace, IsInTheWorkAreaHoweverFarThatIs)
{
    EXPECT_EQ(stripPlace({48, 0, 1184, 800}, 22, 5000), QRect(48, 0, 22, 22));
    EXPECT_EQ(stripPlace({48, 0, 1184, 800}, 22, -5000), QRect(1210, 0, 22, 22));
    EXPECT_EQ(stripPlace({48, 0, 16, 16}, 22, 160), QRect(48, 0, 22, 22)) << "in one that is too small";
}

TEST(StripPlace, LeavesRoomForTheButtonsOfAMaximisedWindow)
{
    EXPECT_EQ(usualStripDistance(1), 160);
    EXPECT_EQ(usualStripDistance(1.5), 240);
    EXPECT_EQ(usualStripDistance(2), 320);
}

struct StripPressRow {
    QPoint moved;
    StripPress press;
};

TEST(StripPress, IsAClickUntilTheMouseHasGoneTheDistanceOfADrag)
{
    const StripPressRow rows[] = {
        {{0, 0}, StripPress::Undecided}, {{9, 0}, StripPress::Undecided}, {{-9, 9}, StripPress::Undecided},
        {{10, 0}, StripPress::Drag},     {{-10, 0}, StripPress::Drag},    {{-40, 30}, StripPress::Drag},
        {{10, -10}, StripPress::Drag},   {{0, 10}, StripPress::Open},     {{9, 10}, StripPress::Open},
        {{-30, 40}, StripPress::Open},   {{0, -10}, StripPress::Open},
    };
    for (const StripPressRow &row : rows) {
        EXPECT_EQ(stripPress(row.moved, 10), row.press) << row.moved.x() << ' ' << row.moved.y();
    }
}

} // namespace
