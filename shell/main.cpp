#include "menu/MenuCommands.h"
#include "notify/feed/KivNotificationReceiver.h"
#include "notify/queue/KivNotificationManager.h"
#include "platform/GraphicalSession.h"
#include "platform/LogCategories.h"
#include "platform/LogOutput.h"
#include "platform/processes/SessionLock.h"
#include "platform/screen/DesktopLook.h"
#include "shell/Application.h"
#include "shell/DockSearch.h"
#include "shell/MenuProcedure.h"
#include "shell/PopUpRequests.h"
#include "shell/ProcessState.h"
#include "shell/ProductTexts.h"
#include "shell/TerminationSignals.h"
#include "shell/link/EventCodes.h"
#include "shell/link/EventHandler.h"

#include <QCoreApplication>
#include <QEvent>

#include <cstdlib>

namespace
{
void startUp()
{
    __wait_dock();
    __owpsn = {};
    __menu = std::make_unique<KIVMenuObj>();
    __menu->setMenuProc(__menu_proc);
    __menu->setFlags(kMenuFlagVisible);
    auto &manager = KivNotificationManager::sharedInstance();
    manager.setKivMenu(__menu.get());
    // At once, unless there are many messages from before: the feed is asked for what is newer than these.
    manager.whenImported([] { KivNotificationReceiver::sharedInstance().recieveNotifications(); });
    GetCurrentProcess(&__mypsn);
    AEInstallEventHandler(kMenuEventClass, kMenuEventID, __ae_handler, nullptr, false);
}

void tearDown()
{
    AERemoveEventHandler(kMenuEventClass, kMenuEventID, __ae_handler, false);
    auto &manager = KivNotificationManager::sharedInstance();
    // The first message is not saved when it comes, and the feed, which knows that it was received, does not send it
    // again.
    manager.saveUnsavedRecords();
    manager.setKivMenu(nullptr);
    KivNotificationReceiver::sharedInstance().stop();
    __menu.reset();
    // A menu that was open has closed what it hung on, which deletes itself later: by now there is no loop to come.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
} // namespace

int main(int, char **argv)
{
    LogOutput::useStandardError();
    if (const QString obstacle = GraphicalSession::prepare(); !obstacle.isEmpty()) {
        qCCritical(agentLog, "%s", qPrintable(obstacle));
        return EXIT_FAILURE;
    }
    int argumentCount = 1; // The program's name: arguments are ignored, Qt's own too.
    Application application(argumentCount, argv);
    Application::setQuitOnLastWindowClosed(false);
    const TerminationSignals signalsEndTheLoop; // Also one that comes while the start waits for a panel.

    SessionLock lock;
    if (!lock.tryAcquire()) {
        qCDebug(agentLog, "another agent has this display: ends at once");
        return EXIT_SUCCESS;
    }
    GraphicalSession::settle();
    DesktopLook::follow(DesktopLook::Part::ColoursAndFonts);
    startUp();
    const PopUpRequests popUpRequests;
    qCDebug(agentLog, "has started");
    GraphicalSession::run();
    qCDebug(agentLog, "ends");
    tearDown();
    return EXIT_SUCCESS;
}
