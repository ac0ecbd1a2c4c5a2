#pragma once

#include <atomic>
#include <chrono>

/// Ends the process, with status 1, once who asked has gone, or when a request takes too long, whatever the thread that
/// carries it out is waiting for: a name that is looked up, a proxy's script, a server.
class FetchWatch final
{
public:
    struct Limits {
        std::chrono::milliseconds silence; ///< Without progress.
        std::chrono::milliseconds whole;   ///< However much progress there is.
    };

    /// Watches from now on to the end of the process, which this object must not outlive otherwise. What standard input
    /// has, or its end, means that who asked has gone; one that cannot be watched means nothing. With `isTalkative` the
    /// reason goes to standard error.
    FetchWatch(Limits limits, bool isTalkative);
    ~FetchWatch() = delete;

    /// Something has come from the server.
    void progress() noexcept;
    /// From now to the next progress it is not the server's silence.
    void pause() noexcept;

    /// Ends the process for that reason, as above.
    [[noreturn]] void giveUp(const char *reason) const noexcept;

private:
    using Clock = std::chrono::steady_clock;

    [[noreturn]] void watch() const noexcept;

    Limits m_limits;
    bool m_isTalkative;
    Clock::time_point m_end;
    std::atomic<Clock::time_point> m_silentSince;
};
