#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <array>

/// Ends the event loop on SIGTERM and SIGINT, so that teardown runs, for as long as it exists. One at a time.
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
