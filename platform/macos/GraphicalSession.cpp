#include "platform/GraphicalSession.h"

#include <QCoreApplication>

QString GraphicalSession::prepare()
{
    // launchd starts the agent in a graphical session or not at all.
    return {};
}

void GraphicalSession::settle()
{
    // The system tells a process only of its own windows.
}

void GraphicalSession::run()
{
    QCoreApplication::exec();
}
