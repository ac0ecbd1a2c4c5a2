#include "platform/linux/screen/windows/Struts.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

using StrutNumbers = std::vector<std::uint32_t>;

Strut strut(const StrutNumbers &numbers)
{
    return strutOf(numbers).value_or(Strut());
}

Strut atTop(std::uint32_t depth, std::uint32_t begin, std::uint32_t end)
{
    return strut({0, 0, depth, 0, 0, 0, 0, 0, begin, end, 0, 0});
}

Strut atBottom(std::uint32_t depth, std::uint32_t begin, std::uint32_t end)
{
    return strut({0, 0, 0, depth, 0, 0, 0, 0, 0, 0, begin, end});
}

Strut atLeft(std::uint32_t depth, std::uint32_t begin, std::uint32_t end)
{
    return strut({depth, 0, 0, 0, begin, end, 0, 0, 0, 0, 0, 0});
}

Strut atRight(std::uint32_t depth, std::uint32_t begin, std::uint32_t end)
{
    return strut({0, depth, 0, 0, 0, 0, begin, end, 0, 0, 0, 0});
}

TEST(Strut, IsReadFromTwelveNumbersOrFour)
{
    const std::optional<Strut> partial = strutOf(StrutNumbers{1, 2, 3, 4, 10, 11, 20, 21, 30, 31, 40, 41});
    ASSERT_TRUE(partial);
    EXPECT_EQ(partial->left.depth, 1);
    EXPECT_EQ(partial->left.begin, 10);
    EXPECT_EQ(partial->left.end, 11);
    EXPECT_EQ(partial->right.depth, 2);
    EXPECT_EQ(partial->right.begin, 20);
    EXPECT_EQ(partial->top.depth, 3);
    EXPECT_EQ(partial->top.end, 31);
    EXPECT_EQ(partial->bottom.depth, 4);
    EXPECT_EQ(partial->bottom.end, 41);
    const std::optional<Strut> whole = strutOf(StrutNumbers{1, 2, 3, 4});
    ASSERT_TRUE(whole);
    EXPECT_EQ(whole->top.depth, 3);
    EXPECT_EQ(whole->top.begin, 0);
    EXPECT_GE(whole->top.end, 65'534) << "it goes along all of the edge";
}

TEST(Strut, IsNoneForAnythingElse)
{
    EXPECT_FALSE(strutOf({}));
    EXPECT_FALSE(strutOf(StrutNumbers{0, 0, 32}));
    EXPECT_FALSE(strutOf(StrutNumbers{0, 0, 32, 0, 0}));
    EXPECT_FALSE(strutOf(StrutNumbers{0, 0, 0x10000, 0}));
    EXPECT_FALSE(strutOf(StrutNumbers{0, 0, 32, 0, 0, 0, 0, 0, 0, 0xffffffff, 0, 0}));
}

struct StrutRow {
    const char *what;
    QSize screen;
    QRect workArea;
    std::vector<Strut> struts;
    QRect monitor;
    QRect usable;
};

TEST(WorkAreaByStruts, HasOfEachMonitorWhatItsOwnPanelsLeave)
{
    const QSize wide(2304, 800);
    const QRect left(0, 0, 1280, 800);
    const QRect right(1280, 0, 1024, 600);
    const QSize high(1280, 1400);
    const QRect upper(0, 0, 1280, 800);
    const QRect lower(100, 800, 1024, 600);
    const StrutRow rows[] = {
        {"a panel at the top of the other", wide, {0, 100, 2304, 700}, {atTop(100, 1280, 2303)}, left, left},
        {"its own", wide, {0, 100, 2304, 700}, {atTop(100, 1280, 2303)}, right, {1280, 100, 1024, 500}},
        {"one at the top of each, its own thinner",
         wide,
         {0, 64, 2304, 736},
         {atTop(32, 0, 1279), atTop(64, 1280, 2303)},
         left,
         {0, 32, 1280, 768}},
        {"one of its own as long as one pixel",
         wide,
         {0, 32, 2304, 768},
         {atTop(32, 1279, 1279)},
         left,
         {0, 32, 1280, 768}},
        {"one that ends beside it", wide, {0, 32, 2304, 768}, {atTop(32, 0, 1279)}, right, right},
        {"one at the bottom of the shorter", wide, {0, 0, 2304, 560}, {atBottom(240, 1280, 2303)}, left, left},
        {"its own there", wide, {0, 0, 2304, 560}, {atBottom(240, 1280, 2303)}, right, {1280, 0, 1024, 560}},
        {"one between the two, of the right one", wide, {1328, 0, 976, 800}, {atLeft(1328, 0, 599)}, left, left},
        {"its own", wide, {1328, 0, 976, 800}, {atLeft(1328, 0, 599)}, right, {1328, 0, 976, 600}},
        {"one between the two, of the left one", wide, {0, 0, 1232, 800}, {atRight(1072, 0, 799)}, right, right},
        {"its own", wide, {0, 0, 1232, 800}, {atRight(1072, 0, 799)}, left, {0, 0, 1232, 800}},
        {"one at the top of the lower", high, {0, 840, 1280, 560}, {atTop(840, 100, 1123)}, upper, upper},
        {"its own", high, {0, 840, 1280, 560}, {atTop(840, 100, 1123)}, lower, {100, 840, 1024, 560}},
        {"one at the top of the upper", high, {0, 40, 1280, 1360}, {atTop(40, 0, 1279)}, lower, lower},
        {"one that the manager knows by itself", wide, {0, 24, 2304, 776}, {}, left, {0, 24, 1280, 776}},
        {"one that the manager knows by itself, and panels at other edges",
         wide,
         {48, 24, 2256, 736},
         {atBottom(40, 0, 1279), atLeft(48, 0, 799)},
         right,
         {1280, 24, 1024, 576}},
        {"one that goes along all of the screen",
         wide,
         {0, 32, 2304, 768},
         {strut({0, 0, 32, 0})},
         right,
         {1280, 32, 1024, 568}},
        {"one that would take more than half", wide, {0, 401, 2304, 399}, {atTop(401, 0, 2303)}, left, left},
        {"one that takes half", wide, {0, 400, 2304, 400}, {atTop(400, 0, 2303)}, left, {0, 400, 1280, 400}},
    };
    for (const StrutRow &row : rows) {
        EXPECT_EQ(workAreaByStruts(row.monitor, row.screen, row.workArea, row.struts), row.usable) << row.what;
    }
}

} // namespace
