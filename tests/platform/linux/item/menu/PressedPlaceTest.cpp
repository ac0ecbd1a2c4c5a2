#include "platform/linux/item/menu/PressedPlace.h"

#include <gtest/gtest.h>

namespace
{

const QRect wide(0, 0, 1280, 800);
const QRect small(0, 0, 1024, 768);
const QRect beside(1280, 0, 1024, 768);

TEST(PressedPlace, HoldsUntilTheScreensChange)
{
    const struct {
        const char *what;
        QList<QRect> then, now;
        bool holds;
    } rows[] = {
        {"as they were", {wide}, {wide}, true},      {"two as they were", {wide, beside}, {wide, beside}, true},
        {"another size", {wide}, {small}, false},    {"one more", {wide}, {wide, beside}, false},
        {"one less", {wide, beside}, {wide}, false}, {"another main one", {wide, beside}, {beside, wide}, false},
        {"none any more", {wide}, {}, false},
    };
    for (const auto &row : rows) {
        const PressedPlace last{{1200, 790}, row.then};
        EXPECT_EQ(placeSincePress(last, row.now), row.holds ? std::optional(QPoint(1200, 790)) : std::nullopt)
            << row.what;
    }
}

TEST(PressedPlace, IsUnknownBeforeTheFirstPress)
{
    EXPECT_EQ(placeSincePress(std::nullopt, {wide}), std::nullopt);
    EXPECT_EQ(placeSincePress(std::nullopt, {}), std::nullopt);
}

TEST(PressedPlace, IsAtTheEndOfThePanelByCustom)
{
    const struct {
        const char *what;
        std::optional<QRect> workArea;
        std::optional<QPoint> place;
    } rows[] = {
        {"nothing known", std::nullopt, std::nullopt},
        {"no panel", wide, std::nullopt},
        {"at the top", QRect(0, 40, 1280, 760), QPoint(1259, 20)},
        {"at the bottom", QRect(0, 0, 1280, 768), QPoint(1263, 783)},
        {"at both", QRect(0, 24, 1280, 752), QPoint(1267, 12)},
        {"at the left", QRect(60, 0, 1220, 800), QPoint(30, 769)},
        {"at the right", QRect(0, 0, 1220, 800), QPoint(1249, 769)},
        {"at the bottom and beside it a dock", QRect(60, 0, 1220, 768), QPoint(1263, 783)},
        {"deeper than any panel", QRect(0, 201, 1280, 599), std::nullopt},
        {"of another monitor", QRect(1280, 40, 1024, 728), std::nullopt},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(endOfPanel(wide, row.workArea), row.place) << row.what;
    }
    EXPECT_EQ(endOfPanel(beside, QRect(1280, 40, 1024, 728)), QPoint(2283, 20));
}

} // namespace
