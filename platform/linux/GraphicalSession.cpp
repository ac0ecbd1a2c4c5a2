#include "platform/GraphicalSession.h"

#include "platform/linux/SessionManagerMessages.h"
#include "platform/linux/accessibility/AccessibilityBus.h"
#include "platform/linux/accessibility/AccessibleApplication.h"
#include "platform/linux/bus/SessionBusAddress.h"
#include "platform/linux/desktop/StartScale.h"
#include "platform/linux/include/SessionBus.h"
#include "platform/linux/include/XConnection.h"
#include "platform/linux/workarounds/LargerImages.h"
#include "platform/linux/workarounds/LateMouseEvents.h"
#include "platform/linux/workarounds/LostWindows.h"
#include "platform/linux/workarounds/MenuMouse.h"
#include "platform/linux/workarounds/RootProperties.h"
#include "platform/linux/workarounds/SessionManagerDeath.h"
#include "platform/linux/workarounds/SuddenExit.h"
#include "platform/linux/workarounds/bus/AccessibilityBridge.h"
#include "platform/linux/workarounds/bus/LibdbusWarnings.h"
#include "platform/linux/workarounds/bus/PortalQuestion.h"
#include "platform/linux/workarounds/memory/CompiledPatterns.h"
#include "platform/linux/workarounds/memory/FlatButtons.h"
#include "platform/linux/workarounds/memory/FreedMemory.h"
#include "platform/linux/workarounds/memory/PixmapCache.h"
#include "platform/linux/workarounds/memory/ThreadHeaps.h"
#include "platform/screen/MenuPopUp.h"

#include <QApplication>

#include <xcb/xfixes.h>

#include <atomic>
#include <csignal>

namespace
{
std::atomic<bool> isEndRequested = false;
}

QString GraphicalSession::prepare()
{
    keepThreadsOnOneHeap();
    // Who ignores its children hands that down, and Qt then never learns how one has ended: to it each has crashed.
    std::signal(SIGCHLD, SIG_DFL);
    // Who reads standard error may be gone; a warning that nobody reads is no reason to die.
    std::signal(SIGPIPE, SIG_IGN);

    // Placement, tray and display modes are X11's; under Wayland that is XWayland, whatever the session tells its
    // programs to prefer. Without a display at all the two others serve tests.
    const QByteArray asked = qgetenv("QT_QPA_PLATFORM");
    const bool needsDisplay = asked != "offscreen" && asked != "minimal";
    if (needsDisplay) {
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
    // The desktop's platform theme would cost up to 14 MB of private memory a session, and 30 ms of start-up.
    QApplication::setDesktopSettingsAware(false);

    endInOrderWhenTheSessionManagerDies(&end);
    SessionManagerMessages::hear();
    keepLibdbusFromAborting();
    keepQtFromLaunchingOrAwaitingABus(sessionBusAddress(),
                                      SessionBus::probeAhead() ? BusUse::Possible : BusUse::Hopeless);
    PortalQuestion::avoid();
    keepQtFromLookingForLargerImages();
    keepQtFromCompilingPatterns();

    if (!needsDisplay) {
        return {};
    }
    // Qt would end the process with a page of advice and a core dump.
    const QByteArray display = qgetenv("DISPLAY");
    if (display.isEmpty()) {
        return QStringLiteral("no graphical session: DISPLAY is not set");
    }
    int screen = 0;
    xcb_connection_t *connection = xcb_connect(nullptr, &screen);
    // Without it Qt gives up in the middle of its start, and trays cannot be watched.
    const bool hasXFixes = XConnection::extension(connection, xcb_xfixes_id) != nullptr;
    const bool answers = xcb_connection_has_error(connection) == 0; // It may have gone as it was asked.
    if (hasXFixes) {
        StartScale::announce(connection, screen);
    }
    xcb_disconnect(connection);
    if (hasXFixes) {
        return {};
    }
    return (answers ? QStringLiteral("no graphical session: the X server %1 lacks the extension XFIXES")
                    : QStringLiteral("no graphical session: the X server %1 does not answer"))
        .arg(QString::fromLocal8Bit(display));
}

void GraphicalSession::settle()
{
    PortalQuestion::allow();
    StartScale::withdraw();
    AccessibleApplication::install();
    new AccessibilityBus(SessionBus::instance(), QCoreApplication::instance());
    FlatButtons::use();
    RootProperties::hearOnlyWhileShown();
    FreedMemory::giveBackAfterWindows();
    LateMouseEvents::keepFromQt();
    MenuMouse::follow();
    LostWindows::close();
    keepQtFromCachingPixmaps();
}

void GraphicalSession::requestEnd() noexcept
{
    isEndRequested = true;
}

bool GraphicalSession::isEnding()
{
    // Qt reads from the server in a thread of its own.
    xcb_connection_t *const connection = XConnection::get();
    SessionManagerMessages::handle();
    return isEndRequested || (connection && xcb_connection_has_error(connection) != 0);
}

void GraphicalSession::end()
{
    requestEnd();
    QCoreApplication::exit();
    closeSystemMenu();
}

void GraphicalSession::run()
{
    const SuddenExit whenTheServerDies;
    // A loop does not learn of an end that was asked for before it.
    if (!isEndRequested) {
        SuddenExit::afterLoop(QApplication::exec());
    }
}
