#include "tests/session/soak/Life.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace
{

using namespace std::chrono_literals;

qint64 median(std::vector<qint64> values)
{
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
    std::vector<qint64> memory;
    const auto start = std::chrono::steady_clock::now();
    // On a machine at work days may take longer.
    const auto isOver = [&] {
        return std::chrono::steady_clock::now() - start >= length &&
               static_cast<double>(life.lived().count()) >= std::floor(daysOfTheRun()) * 86400;
    };
    bool goesOn = true;
    while (goesOn && !isOver()) {
        life.letTimePass();
        goesOn = life.carryOutOne();
        memory.push_back(life.memory());
    }
    // It goes up and down with the windows that are open.
    const std::size_t quarter = memory.size() / 4;
    const qint64 inTheSecondQuarter = median({memory.begin() + quarter, memory.begin() + 2 * quarter + 1});
    const qint64 inTheLastQuarter = median({memory.end() - 1 - quarter, memory.end()});
    int operations = 0;
    for (const auto &[name, count] : life.counts()) {
        std::printf("%6d  %s\n", count, name.c_str());
        operations += count;
        // The shorter ones do not come to everything.
        EXPECT_TRUE(count > 0 || length < 5min || HasFailure()) << name;
    }
    std::printf("%d operations in %.1f simulated days, %d failures\n"
                "private memory %lld kB at the start, %lld kB in the second quarter of the time, %lld kB in the last\n",
                operations, static_cast<double>(life.lived().count()) / 86400, HasFailure() ? 1 : 0,
                static_cast<long long>(atStart), static_cast<long long>(inTheSecondQuarter),
                static_cast<long long>(inTheLastQuarter));
    EXPECT_STREQ(Life::unexpected(life.agent().systemLog()).join('\n').constData(), "");
    EXPECT_STREQ(Life::unexpected(life.agent().standardError().split('\n')).join('\n').constData(), "");
#ifndef __SANITIZE_ADDRESS__ // It keeps what is freed for a while.
    constexpr qint64 maxGrowth = 1024;
    EXPECT_LT(inTheLastQuarter - inTheSecondQuarter, maxGrowth) << "kB from the second quarter of the time to the last";
#endif
}
