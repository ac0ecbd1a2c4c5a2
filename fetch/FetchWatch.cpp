#include "fetch/FetchWatch.h"

#include "fetch/StandardOutput.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <poll.h>
#include <string>
#include <thread>
#include <unistd.h>

FetchWatch::FetchWatch(Limits limits, bool isTalkative)
    : m_limits(limits)
    , m_isTalkative(isTalkative)
    , m_end(Clock::now() + limits.whole)
    , m_silentSince(Clock::now())
{
    std::thread([this] { watch(); }).detach();
}

void FetchWatch::progress() noexcept
{
    m_silentSince = Clock::now();
}

void FetchWatch::pause() noexcept
{
    m_silentSince = m_end;
}

void FetchWatch::giveUp(const char *reason) const noexcept
{
    if (m_isTalkative) {
        sayOnStandardError(std::string("no whole answer: ") + reason);
    }
    // At once: other threads may be in the middle of something, and one that looks up a name may take minutes.
    std::_Exit(EXIT_FAILURE);
}

void FetchWatch::watch() const noexcept
{
    pollfd asker{STDIN_FILENO, POLLIN, 0};
    for (;;) {
        const Clock::time_point silenceEnds = m_silentSince.load() + m_limits.silence;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(std::min(silenceEnds, m_end) - Clock::now());
        if (left.count() <= 0) {
            giveUp(m_end < silenceEnds ? "it takes too long" : "the server is silent");
        }
        if (::poll(&asker, 1, static_cast<int>(left.count())) <= 0) {
            continue;
        }
        if ((asker.revents & POLLNVAL) == 0) {
            giveUp("who asked has gone");
        }
        asker.fd = -1; // macOS cannot tell of a device, as a terminal is, and would say so again at once.
    }
}
