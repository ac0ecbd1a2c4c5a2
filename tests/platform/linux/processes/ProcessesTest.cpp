#include "tests/support/ChildProcess.h"
#include "tests/support/WaitUntil.h"

#include <Carbon/Processes.h>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

ProcessSerialNumber serialNumberOf(qint64 pid)
{
    return {0, static_cast<UInt32>(pid)};
}

TEST(GetCurrentProcess, IsZeroAndTheProcessID)
{
    ProcessSerialNumber psn{9, 9};
    EXPECT_EQ(GetCurrentProcess(&psn), noErr);
    EXPECT_EQ(psn.highLongOfPSN, 0u);
    EXPECT_EQ(psn.lowLongOfPSN, static_cast<UInt32>(::getpid()));
    EXPECT_EQ(GetCurrentProcess(nullptr), paramErr);
}

TEST(GetProcessPID, KnowsWhoRuns)
{
    ChildProcess child;
    ASSERT_TRUE(child.start(QStringLiteral("sleep"), {QStringLiteral("100")}));
    const ProcessSerialNumber psn = serialNumberOf(child.pid());
    pid_t pid = 0;
    EXPECT_EQ(GetProcessPID(&psn, &pid), noErr);
    EXPECT_EQ(pid, child.pid());
    child.kill();
    EXPECT_EQ(GetProcessPID(&psn, &pid), procNotFound);
}

TEST(GetProcessPID, LeavesThePidAloneWhenThereIsNoProcess)
{
    for (const ProcessSerialNumber &psn :
         {ProcessSerialNumber{0, 0}, ProcessSerialNumber{1, static_cast<UInt32>(::getpid())},
          ProcessSerialNumber{0, 0xffffffff}, ProcessSerialNumber{0, 0x80000001}, ProcessSerialNumber{0, 0x7fffffff}}) {
        pid_t pid = 4711;
        EXPECT_EQ(GetProcessPID(&psn, &pid), procNotFound) << psn.lowLongOfPSN;
        EXPECT_EQ(pid, 4711);
    }
    const ProcessSerialNumber psn = serialNumberOf(::getpid());
    pid_t pid = 0;
    EXPECT_EQ(GetProcessPID(nullptr, &pid), paramErr);
    EXPECT_EQ(GetProcessPID(&psn, nullptr), paramErr);
}

TEST(GetProcessPID, DoesNotCountAZombie)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(0);
    }
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT), 0);
    const ProcessSerialNumber psn = serialNumberOf(child);
    pid_t pid = 4711;
    EXPECT_EQ(GetProcessPID(&psn, &pid), procNotFound);
    EXPECT_EQ(pid, 4711);
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
}

TEST(GetProcessPID, DoesNotCountAThread)
{
    std::thread([] {
        const ProcessSerialNumber psn = serialNumberOf(::gettid());
        pid_t pid = 4711;
        EXPECT_EQ(GetProcessPID(&psn, &pid), procNotFound);
    }).join();
}

TEST(SameProcess, ComparesBothWords)
{
    struct Case {
        ProcessSerialNumber a, b;
        OSErr status;
        Boolean result;
    };
    constexpr Boolean untouched = 7;
    for (const Case &c : {
             Case{{0, 5}, {0, 5}, noErr, true},
             Case{{0, 5}, {0, 6}, noErr, false},
             Case{{1, 5}, {0, 5}, noErr, false},
             Case{{1, 0}, {1, 0}, noErr, true},
             Case{{0, 0}, {0, 5}, procNotFound, untouched},
             Case{{0, 5}, {0, 0}, procNotFound, untouched},
             Case{{0, 0}, {0, 0}, procNotFound, untouched},
         }) {
        Boolean result = untouched;
        EXPECT_EQ(SameProcess(&c.a, &c.b, &result), c.status);
        EXPECT_EQ(result, c.result);
    }
    const ProcessSerialNumber psn{0, 5};
    Boolean result = untouched;
    EXPECT_EQ(SameProcess(nullptr, &psn, &result), paramErr);
    EXPECT_EQ(SameProcess(&psn, nullptr, &result), paramErr);
    EXPECT_EQ(SameProcess(&psn, &psn, nullptr), paramErr);
    EXPECT_EQ(result, untouched);
}

TEST(ExitToShell, EndsAtOnceWithStatusZero)
{
    const pid_t child = ::fork();
    if (child == 0) {
        // Would show in the status if anything were torn down.
        static_cast<void>(std::atexit([] { ::_exit(3); }));
        ExitToShell();
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

} // namespace
