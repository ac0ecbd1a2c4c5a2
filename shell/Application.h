#pragma once

#include <QApplication>

/// The application object. An exception that leaves a callback of the event loop ends that callback only: the agent
/// goes on with the next event.
class Application final : public QApplication
{
    Q_OBJECT

public:
    using QApplication::QApplication;

    bool notify(QObject *receiver, QEvent *event) override;
};
