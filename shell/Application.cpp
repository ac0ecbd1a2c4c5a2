#include "shell/Application.h"

#include "platform/GraphicalSession.h"
#include "platform/LogCategories.h"

#include <QEvent>

#include <exception>

bool Application::notify(QObject *receiver, QEvent *event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception &exception) {
        qCWarning(agentLog) << "exception in an event callback:" << QString::fromUtf8(exception.what());
        return true;
    }
}

bool Application::event(QEvent *event)
{
    if (event->type() == QEvent::Quit) {
        // Qt would close all windows first: to close a pop-up is to be done with its message, and one of the service's
        // that is closed so comes up again at once, for ever.
        qCDebug(agentLog, "the session asks it to end");
        GraphicalSession::end();
        return true;
    }
    return QApplication::event(event);
}
