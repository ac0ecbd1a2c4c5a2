#pragma once

#include <chrono>
#include <ctime>

/// What this thread has taken so far: other programs and threads do not count. To be compared with what the same work
/// takes here and now, and never with a number, which another machine or build would not hold.
inline std::chrono::nanoseconds processorTimeOfThisThread()
{
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}
