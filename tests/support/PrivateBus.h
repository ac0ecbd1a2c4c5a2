#pragma once

#include "tests/support/ChildProcess.h"

#include <QTemporaryDir>

/// A message bus of the test's own, at an address that stays the same when the bus is stopped and started again.
class PrivateBus final
{
public:
    /// Its socket lies in `folder`, or else in one of its own.
    explicit PrivateBus(const QString &folder = {});

    /// Starts the daemon and returns once it listens. False, with a test failure, when it does not.
    bool start();
    /// Kills the daemon: every connection to it is lost.
    void stop();
    /// Stops the daemon where it is: connections stand, and nothing is answered.
    void suspend();
    void resume();

    [[nodiscard]] QString address() const;

private:
    QTemporaryDir m_directory;
    const QString m_folder;
    ChildProcess m_daemon;
};
