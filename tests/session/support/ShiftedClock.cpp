#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

// Loaded into the agent ahead of the C library, so that a test can let hours pass for it at once: the time of day and
// the clock of its timers are what the file KIV_CLOCK_FILE makes of them, which the test may change at any moment. A
// wait with a limit looks up often enough to notice.

namespace
{

constexpr std::int64_t second = 1'000'000'000;
constexpr std::int64_t lookUpEvery = second / 100;

/// The file. Both in nanoseconds.
struct Clock {
    std::int64_t shift;     ///< How far ahead the clocks are.
    std::int64_t stoppedAt; ///< When they stopped, on the clock of the timers; 0 while they run.
};

volatile const Clock *clockOfTheTest = nullptr;

__attribute__((constructor)) void openClockFile()
{
    const char *path = std::getenv("KIV_CLOCK_FILE");
    const int file = path ? ::open(path, O_RDONLY | O_CLOEXEC) : -1;
    if (file >= 0) {
        void *memory = ::mmap(nullptr, sizeof(Clock), PROT_READ, MAP_SHARED, file, 0);
        clockOfTheTest = memory == MAP_FAILED ? nullptr : static_cast<volatile const Clock *>(memory);
        ::close(file);
    }
}

bool isShifted(clockid_t clock)
{
    return clockOfTheTest && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE || clock == CLOCK_MONOTONIC ||
                              clock == CLOCK_MONOTONIC_COARSE || clock == CLOCK_BOOTTIME);
}

timespec toTimespec(std::int64_t nanoseconds)
{
    return {static_cast<time_t>(nanoseconds / second), static_cast<long>(nanoseconds % second)};
}

std::int64_t toNanoseconds(const timespec &time)
{
    return static_cast<std::int64_t>(time.tv_sec) * second + time.tv_nsec;
}

std::int64_t realTime(clockid_t clock)
{
    timespec time{};
    ::syscall(SYS_clock_gettime, clock, &time);
    return toNanoseconds(time);
}

std::int64_t shift()
{
    const std::int64_t stoppedAt = clockOfTheTest->stoppedAt;
    return clockOfTheTest->shift - (stoppedAt == 0 ? 0 : realTime(CLOCK_MONOTONIC) - stoppedAt);
}

std::int64_t now(clockid_t clock)
{
    return realTime(clock) + (isShifted(clock) ? shift() : 0);
}

int wait(pollfd *files, nfds_t count, const timespec *timeout, const sigset_t *signals)
{
    constexpr std::size_t kernelSignalSetSize = 8;
    const auto waitFor = [&](timespec *time) {
        return static_cast<int>(::syscall(SYS_ppoll, files, count, time, signals, kernelSignalSetSize));
    };
    if (!timeout) {
        return waitFor(nullptr);
    }
    const std::int64_t end = now(CLOCK_MONOTONIC) + toNanoseconds(*timeout);
    while (true) {
        const std::int64_t left = end - now(CLOCK_MONOTONIC);
        timespec slice = toTimespec(left < 0 ? 0 : left < lookUpEvery ? left : lookUpEvery);
        const int result = waitFor(&slice);
        if (result != 0 || left <= lookUpEvery) {
            return result;
        }
    }
}

} // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const auto result = static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
    if (result == 0 && isShifted(clock)) {
        *time = toTimespec(toNanoseconds(*time) + shift());
    }
    return result;
}

int gettimeofday(timeval *__restrict time, void *__restrict) noexcept
{
    const timespec present = toTimespec(now(CLOCK_REALTIME));
    *time = {present.tv_sec, present.tv_nsec / 1000};
    return 0;
}

time_t time(time_t *result) noexcept
{
    const auto present = static_cast<time_t>(now(CLOCK_REALTIME) / second);
    if (result) {
        *result = present;
    }
    return present;
}

int poll(pollfd *files, nfds_t count, int milliseconds)
{
    const timespec timeout = toTimespec(milliseconds * (second / 1000));
    return wait(files, count, milliseconds < 0 ? nullptr : &timeout, nullptr);
}

int ppoll(pollfd *files, nfds_t count, const timespec *timeout, const sigset_t *signals)
{
    return wait(files, count, timeout, signals);
}

// What the two above become when a library is built with fortification.
int __poll_chk(pollfd *files, nfds_t count, int milliseconds, std::size_t)
{
    return poll(files, count, milliseconds);
}

int __ppoll_chk(pollfd *files, nfds_t count, const timespec *timeout, const sigset_t *signals, std::size_t)
{
    return ppoll(files, count, timeout, signals);
}
}
