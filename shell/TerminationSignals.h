#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <array>

/// Ends the event loop, so that teardown runs, on each signal that the end of a session or of a terminal may send:
/// SIGTERM, SIGINT, SIGHUP, SIGQUIT. The end of a session sends more than one of them: after the destruction of this
/// object they are ignored, so that they do not disturb the teardown. One object at a time.
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
