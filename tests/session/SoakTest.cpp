#include "tests/session/soak/Life.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace
{

using namespace std::chrono_literals;

/// 0 of none.
qint64 median(std::vector<qint64> values)
{
    if (values.empty()) {
        return 0;
    }
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

std::chrono::duration<double> lengthOfTheRun()
{
    constexpr std::chrono::duration<double> whenNothingIsSaid = 5s;
    const double minutes = qEnvironmentVariable("KIV_SOAK_MINUTES").toDouble();
    return minutes > 0 ? std::chrono::duration<double>(minutes * 60) : whenNothingIsSaid;
}

/// How many days the agent lives in that time: one in a minute unless told otherwise.
double daysOfTheRun()
{
    const double days = qEnvironmentVariable("KIV_SOAK_DAYS").toDouble();
    return days > 0 ? days : lengthOfTheRun().count() / 60;
}

unsigned seedOfTheRun()
{
    // Always the same among the other tests, where nobody would know what a failure has to do with the last change.
    constexpr unsigned whenNothingIsSaid = 1;
    const unsigned seed = qEnvironmentVariable("KIV_SOAK_SEED").toUInt();
    return seed != 0 ? seed : whenNothingIsSaid;
}

} // namespace

TEST(Soak, OfDaysInASessionLeavesTheAgentAsItWas)
{
    const unsigned seed = seedOfTheRun();
    const auto length = lengthOfTheRun();
    std::printf("seed %u\n", seed);
    std::fflush(stdout);
    SCOPED_TRACE("seed " + std::to_string(seed));
    Life life(seed, daysOfTheRun(), length);
    ASSERT_TRUE(life.start());
    const qint64 atStart = life.memory();
    const auto start = std::chrono::steady_clock::now();
    const auto elapsed = [&] { return std::chrono::steady_clock::now() - start; };
    // On a machine at work days may take longer.
    const auto isOver = [&] {
        return elapsed() >= length && static_cast<double>(life.lived().count()) >= std::floor(daysOfTheRun()) * 86400;
    };
    // In the middle one agent lives as long as all others, and what grows in it does not begin anew with the next.
    const auto isMiddle = [&] { return elapsed() >= length / 4 && elapsed() < length * 3 / 4; };
    std::vector<qint64> memory;
    std::optional<qint64> theOne;
    for (bool goesOn = true; goesOn && !isOver();) {
        life.letTimePass();
        if (!isMiddle()) {
            goesOn = life.carryOutOne(Life::Agents::ComeAndGo);
            continue;
        }
        theOne = theOne.value_or(life.agent().pid());
        goesOn = life.carryOutOne(Life::Agents::LiveOn);
        EXPECT_EQ(life.agent().pid(), *theOne) << "it ends in the midst of its long life";
        memory.push_back(life.memory());
    }
    // It goes up and down with the windows that are open.
    const std::size_t quarter = memory.size() / 4;
    const qint64 early = median({memory.begin(), memory.begin() + quarter});
    const qint64 late = median({memory.end() - quarter, memory.end()});
    int operations = 0;
    for (const auto &[name, count] : life.counts()) {
        std::printf("%6d  %s\n", count, name.c_str());
        operations += count;
    }
    // The shorter ones do not come to everything, and in the midst of their one life the feed's flood may come.
    constexpr int manyOperations = 1500;
    const bool isLong = operations >= manyOperations;
    for (const auto &[name, count] : life.counts()) {
        EXPECT_TRUE(count > 0 || !isLong || HasFailure()) << name;
    }
    std::printf("%d operations in %.1f simulated days, %d failures\n"
                "private memory %lld kB at the start, early in the one life of %zu operations %lld kB and late in it "
                "%lld kB, %lld kB at the end\n%s",
                operations, static_cast<double>(life.lived().count()) / 86400, HasFailure() ? 1 : 0,
                static_cast<long long>(atStart), memory.size(), static_cast<long long>(early),
                static_cast<long long>(late), static_cast<long long>(life.memory()),
                isLong ? "" : "too few operations to ask for each of them and for a limit of growth\n");
    EXPECT_STREQ(Life::unexpected(life.agent().systemLog()).join('\n').constData(), "");
    EXPECT_STREQ(Life::unexpected(life.agent().standardError().split('\n')).join('\n').constData(), "");
#ifndef __SANITIZE_ADDRESS__ // It keeps what is freed for a while.
    constexpr qint64 maxGrowth = 2048;
    EXPECT_TRUE(!isLong || late - early < maxGrowth) << "it grows from the first quarter of the one life to the last";
#endif
}
