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

} // namespace
