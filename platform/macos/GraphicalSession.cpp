#include "platform/GraphicalSession.h"

#include <QCoreApplication>

#include <atomic>

namespace
{
std::atomic<bool> isEndRequested = false;
}

QString GraphicalSession::prepare()
{
    // launchd starts the agent in a graphical session or not at all.
    return {};
}

void GraphicalSession::settle()
{
    // The system tells a process only of its own windows.
}

void GraphicalSession::requestEnd() noexcept
{
    isEndRequested = true;
}

bool GraphicalSession::isEnding() noexcept
{
    return isEndRequested;
}

void GraphicalSession::run()
{
    QCoreApplication::exec();
}
