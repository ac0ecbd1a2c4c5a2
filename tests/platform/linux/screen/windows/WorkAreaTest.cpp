#include "platform/linux/screen/windows/WorkArea.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

using AreaNumbers = std::vector<std::uint32_t>;

TEST(WorkArea, IsThatOfTheCurrentDesktop)
{
    const AreaNumbers two{0, 0, 1280, 800, 10, 32, 1200, 768};
    EXPECT_EQ(workAreaOf(two, 0), QRect(0, 0, 1280, 800));
    EXPECT_EQ(workAreaOf(two, 1), QRect(10, 32, 1200, 768));
    EXPECT_EQ(workAreaOf(two, 2), QRect(0, 0, 1280, 800)) << "one for all";
    EXPECT_EQ(workAreaOf(AreaNumbers{0, 32, 1280, 768, 7, 7}, 1), QRect(0, 32, 1280, 768)) << "half a desktop is none";
    EXPECT_EQ(workAreaOf(AreaNumbers{0, 32, 1280}, 0), std::nullopt);
    EXPECT_EQ(workAreaOf({}, 0), std::nullopt);
}

TEST(WorkArea, IsNoneWhereItIsLargerThanAnyScreen)
{
    EXPECT_EQ(workAreaOf(AreaNumbers{0, 0, 0xffff, 0xffff}, 0), QRect(0, 0, 0xffff, 0xffff));
    for (const AreaNumbers &numbers : {AreaNumbers{0x40000000, 0, 1280, 800}, AreaNumbers{0, 0xffffffff, 1280, 800},
                                       AreaNumbers{0, 0, 0x7fffffff, 800}, AreaNumbers{0, 0, 1280, 0x10000}}) {
        EXPECT_EQ(workAreaOf(numbers, 0), std::nullopt);
    }
}

struct AreaRow {
    const char *what;
    QRect monitor;
    std::optional<QRect> workArea;
    QRect usable;
};

TEST(WorkArea, IsCutToTheMonitor)
{
    const QRect whole(0, 0, 1280, 800);
    const QRect lower(0, 800, 1280, 800);
    const QRect right(1280, 0, 1024, 768);
    const AreaRow rows[] = {
        {"no window manager", whole, std::nullopt, whole},
        {"a panel at the top", whole, QRect(0, 32, 1280, 768), {0, 32, 1280, 768}},
        {"panels at all edges", whole, QRect(48, 32, 1184, 736), {48, 32, 1184, 736}},
        {"two monitors, a panel below", whole, QRect(0, 0, 2304, 760), {0, 0, 1280, 760}},
        {"the shorter one of them", right, QRect(0, 0, 2304, 760), {1280, 0, 1024, 760}},
        {"the upper of two", whole, QRect(0, 32, 1280, 1568), {0, 32, 1280, 768}},
        {"a panel between two, which takes the upper one away", whole, QRect(0, 832, 1280, 768), whole},
        {"the lower one then", lower, QRect(0, 832, 1280, 768), {0, 832, 1280, 768}},
        {"a panel between two side by side", whole, QRect(1328, 0, 976, 768), whole},
        {"less than half of the monitor", whole, QRect(0, 401, 1280, 399), whole},
        {"half of it", whole, QRect(0, 400, 1280, 400), {0, 400, 1280, 400}},
        {"an empty one", whole, QRect(0, 0, 0, 0), whole},
    };
    for (const AreaRow &row : rows) {
        EXPECT_EQ(workAreaOn(row.monitor, row.workArea), row.usable) << row.what;
    }
}

} // namespace
