#include "platform/GraphicalSession.h"

#include "platform/screen/MenuPopUp.h"

#include <QCoreApplication>

#include <atomic>
#include <csignal>

namespace
{
std::atomic<bool> isEndRequested = false;
}

QString GraphicalSession::prepare()
{
    // Who ignores its children hands that down, and Qt then never learns how one has ended: to it each has crashed.
    std::signal(SIGCHLD, SIG_DFL);
    // Who reads standard error may be gone; a warning that nobody reads is no reason to die.
    std::signal(SIGPIPE, SIG_IGN);
    // Qt would make the agent the active program at each login, although its information dictionary says what it is.
    qputenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "1");
    // On a screen with a scale Qt looks for "name@2x" beside each image that a text of the feed names.
    qputenv("QT_HIGHDPI_DISABLE_2X_IMAGE_LOADING", "1");
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

bool GraphicalSession::isEnding()
{
    return isEndRequested;
}

void GraphicalSession::end()
{
    QCoreApplication::exit();
    closeSystemMenu();
}

void GraphicalSession::run()
{
    QCoreApplication::exec();
}
