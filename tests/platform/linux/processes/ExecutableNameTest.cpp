#include "platform/linux/include/ExecutableName.h"

#include <gtest/gtest.h>

#include <errno.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

TEST(ExecutableName, IsTheFileNameOfTheProgram)
{
    EXPECT_EQ(executableName(::getpid()), ::program_invocation_short_name);
}

TEST(ExecutableName, IsTheKernelsShortNameWhenTheFileMayNotBeSeen)
{
    // A process that has ended has no file any more, and a name until somebody has asked for its end.
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(0);
    }
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT), 0);
    constexpr qsizetype longestShortName = 15;
    EXPECT_EQ(executableName(child), QByteArray(::program_invocation_short_name).left(longestShortName));
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    EXPECT_EQ(executableName(child), QByteArray());
}

} // namespace
