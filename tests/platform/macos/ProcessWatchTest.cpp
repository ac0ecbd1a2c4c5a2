#include "platform/processes/ProcessWatch.h"

#include <gtest/gtest.h>

#include <map>
#include <sys/sysctl.h>

// The call by which the kernel tells of a process.

namespace
{

std::map<int, extern_proc> processesOfTheKernel;
bool kernelTells = true;

} // namespace

extern "C" int sysctl(int *name, unsigned nameLength, void *old, std::size_t *oldLength, void *replacement, std::size_t)
{
    if (!kernelTells || nameLength != 4 || name[0] != CTL_KERN || name[1] != KERN_PROC || name[2] != KERN_PROC_PID ||
        *oldLength < sizeof(kinfo_proc) || replacement) {
        return -1;
    }
    // Of none it tells nothing, and that is no error.
    *oldLength = 0;
    if (const auto found = processesOfTheKernel.find(name[3]); found != processesOfTheKernel.end()) {
        static_cast<kinfo_proc *>(old)->kp_proc = found->second;
        *oldLength = sizeof(kinfo_proc);
    }
    return 0;
}

namespace
{

constexpr pid_t watchedNumber = 4711;

class MacProcessWatch : public testing::Test
{
protected:
    MacProcessWatch()
    {
        kernelTells = true;
        processesOfTheKernel = {{watchedNumber, {{1'700'000'000, 250}, 2}}, {1, {{1'600'000'000, 0}, 2}}};
    }
};

} // namespace

TEST_F(MacProcessWatch, TellsThatAProcessHasEnded)
{
    const auto hasEnded = watchProcess(watchedNumber);
    EXPECT_FALSE(hasEnded());
    processesOfTheKernel.erase(watchedNumber);
    EXPECT_TRUE(hasEnded());
}

TEST_F(MacProcessWatch, TellsAProcessFromALaterOneOfTheSameNumber)
{
    const auto hasEnded = watchProcess(watchedNumber);
    processesOfTheKernel[watchedNumber].p_starttime.tv_usec += 1;
    EXPECT_TRUE(hasEnded());
    const auto laterHasEnded = watchProcess(watchedNumber);
    EXPECT_FALSE(laterHasEnded());
    processesOfTheKernel[watchedNumber].p_starttime.tv_sec += 1;
    EXPECT_TRUE(laterHasEnded());
}

TEST_F(MacProcessWatch, TakesOneThatItsParentHasNotWaitedForAsEnded)
{
    const auto hasEnded = watchProcess(watchedNumber);
    processesOfTheKernel[watchedNumber].p_stat = SZOMB;
    EXPECT_TRUE(hasEnded());
}

TEST_F(MacProcessWatch, KnowsOneThatWasGoneFromTheBeginningWhoeverHasItsNumberLater)
{
    processesOfTheKernel.erase(watchedNumber);
    const auto hasEnded = watchProcess(watchedNumber);
    EXPECT_TRUE(hasEnded());
    processesOfTheKernel[watchedNumber] = {{1'700'000'001, 0}, 2};
    EXPECT_TRUE(hasEnded());
}

TEST_F(MacProcessWatch, TakesNoneAsEndedWhereTheKernelDoesNotTell)
{
    const auto hasEnded = watchProcess(watchedNumber);
    kernelTells = false;
    EXPECT_FALSE(hasEnded());
    EXPECT_FALSE(watchProcess(watchedNumber)());
}
