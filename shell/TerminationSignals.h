#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <array>

/// Ends the event loop, so that teardown runs, on each signal that a session's end or a terminal's may send: SIGTERM,
/// SIGINT, SIGHUP, SIGQUIT. The end of a session sends more than one: once this object has gone they are ignored, and
/// do not disturb what it has set off. One at a time.
class TerminationSignals final : public QObject
{
    Q_OBJECT

public:
    TerminationSignals();
    ~TerminationSignals() override;

private:
    std::array<int, 2> m_pipe;
    QSocketNotifier m_notifier;
};
