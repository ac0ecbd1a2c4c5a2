#include "shell/Application.h"

#include <exception>

bool Application::notify(QObject *receiver, QEvent *event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception &exception) {
        qWarning("exception in an event callback: %s", exception.what());
        return true;
    }
}
