#pragma once

#include <QApplication>

/// The application object. An exception that leaves a callback of the event loop ends that callback only: the agent
/// goes on with the next event. A request to quit, from a session manager or from macOS, ends the event loop with
/// status 0 and closes no window.
class Application final : public QApplication
{
    Q_OBJECT

public:
    using QApplication::QApplication;

    bool notify(QObject *receiver, QEvent *event) override;

protected:
    bool event(QEvent *event) override;
};
