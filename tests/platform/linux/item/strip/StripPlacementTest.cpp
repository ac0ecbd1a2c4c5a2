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

TEST(StripPlace, IsKeptInPointsWhenTheScaleChanges)
{
    EXPECT_EQ(keptStripDistance(100, keptRatio(1), 1), 100);
    EXPECT_EQ(keptStripDistance(100, keptRatio(1), 2), 200);
    EXPECT_EQ(keptStripDistance(250, keptRatio(1.25), 1), 200);
    EXPECT_EQ(keptStripDistance(0, keptRatio(2), 1), 0);
    for (const double ratio : {1.0, 1.25, 1.5, 4.0 / 3, 2.0}) {
        EXPECT_EQ(keptStripDistance(3839, keptRatio(ratio), ratio), 3839) << ratio;
    }
}

TEST(StripPlace, IsNotKeptFromAScreenThatNobodyHas)
{
    EXPECT_EQ(keptRatio(1.5), 0x18000U) << "the copy after an upgrade reads it, too";
    EXPECT_EQ(keptStripDistance(65'536, keptRatio(1), 1), std::nullopt);
    EXPECT_EQ(keptStripDistance(0xffffffff, keptRatio(1), 1), std::nullopt);
    EXPECT_EQ(keptStripDistance(50, 0, 1), std::nullopt);
    EXPECT_EQ(keptStripDistance(50, 60, 1), std::nullopt);
    EXPECT_EQ(keptStripDistance(50, keptRatio(101), 1), std::nullopt);
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
