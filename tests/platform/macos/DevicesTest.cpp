#include "fetch/FetchWatch.h"
#include "fetch/StandardOutput.h"
#include "platform/LogCategories.h"
#include "platform/LogOutput.h"

#include <QScopeGuard>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

// macOS cannot tell of devices, neither of a terminal nor of /dev/null.

namespace
{

bool areDevices = false; ///< Standard input and error.
int questionsOfInput = 0;
constexpr int askedAgain = 3; ///< The status of a program that would go on asking at once.

} // namespace

// The C library declares it as one that does not read what it is given.
extern "C" int pollOfTheTest(pollfd *descriptors, nfds_t count, int milliseconds) __asm__("poll");

extern "C" int pollOfTheTest(pollfd *descriptors, nfds_t count, int milliseconds)
{
    if (areDevices && count == 1 && (descriptors->fd == STDIN_FILENO || descriptors->fd == STDERR_FILENO)) {
        if (descriptors->fd == STDIN_FILENO && ++questionsOfInput > 1) {
            std::_Exit(askedAgain);
        }
        descriptors->revents = POLLNVAL;
        return 1;
    }
    const timespec time{milliseconds / 1000, (milliseconds % 1000) * 1'000'000L};
    return ::ppoll(descriptors, count, milliseconds < 0 ? nullptr : &time, nullptr);
}

namespace
{

/// The lines that `say` has written to a standard error that cannot be watched.
std::string saidToADevice(const std::function<void()> &say)
{
    testing::internal::CaptureStderr();
    areDevices = true;
    const auto watchable = qScopeGuard([] { areDevices = false; });
    say();
    return testing::internal::GetCapturedStderr();
}

} // namespace

TEST(MacDevices, TakeTheLinesOfTheAgent)
{
    const auto before = qScopeGuard([] { qInstallMessageHandler(nullptr); });
    LogOutput::useStandardError();
    EXPECT_EQ(saidToADevice([] { qCWarning(linkLog, "no way"); }), "kiv.link: no way\n");
}

TEST(MacDevices, TakeTheLinesOfTheProgramThatFetches)
{
    EXPECT_EQ(saidToADevice([] { sayOnStandardError("no answer"); }), "kivfetch: no answer\n");
}

TEST(MacDevicesDeathTest, AreAskedOnceAndNotHeldForOneWhoHasGone)
{
    const auto fetch = [] {
        areDevices = true;
        [[maybe_unused]] const FetchWatch &watch =
            *new FetchWatch({.silence = std::chrono::milliseconds(50), .whole = std::chrono::minutes(1)}, true);
        ::pause();
    };
    EXPECT_EXIT(fetch(), testing::ExitedWithCode(EXIT_FAILURE), "no whole answer: the server is silent");
}
