#pragma once

#include <memory>

/// One copy of the agent per graphical session: held by the first process that asks, until it ends in whatever way.
/// Main thread only.
class SessionLock final
{
public:
    SessionLock();
    ~SessionLock();

    /// False when another process of this graphical session holds the lock.
    [[nodiscard]] bool tryAcquire();

private:
    class Private;
    std::unique_ptr<Private> d;
};
