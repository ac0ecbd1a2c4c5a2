#pragma once

#include <QApplication>

/// The application object. An exception that leaves a callback of the event loop ends that callback only: the agent
/// goes on with the next event. Whoever asks the session's programs to quit (a session manager, on macOS the system)
/// ends the event loop with status 0 and closes no window.
class Application final : public QApplication
{
    Q_OBJECT

public:
    using QApplication::QApplication;

    bool notify(QObject *receiver, QEvent *event) override;

protected:
    bool event(QEvent *event) override;
};
