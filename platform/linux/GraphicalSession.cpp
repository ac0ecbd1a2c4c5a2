#include "platform/GraphicalSession.h"

#include "platform/linux/bus/SessionBusAddress.h"
#include "platform/linux/workarounds/FreedMemory.h"
#include "platform/linux/workarounds/LateMouseEvents.h"
#include "platform/linux/workarounds/LibdbusWarnings.h"
#include "platform/linux/workarounds/MenuMouse.h"
#include "platform/linux/workarounds/RootProperties.h"

#include <QApplication>
#include <QDBusConnection>
#include <QPixmapCache>

#include <xcb/xfixes.h>

#include <X11/ICE/ICElib.h>
#include <csignal>

namespace
{

/// Qt looks for the session bus by itself, for its accessibility bridge, once the application's loop begins. Without an
/// address libdbus would run dbus-launch, and a bus that never answers would hold up the loop for minutes.
void keepQtFromLaunchingOrWaiting()
{
    keepLibdbusFromAborting();
    constexpr char variable[] = "DBUS_SESSION_BUS_ADDRESS";
    const QString usable = sessionBusAddress();
    const QByteArray address = usable.isEmpty() ? QByteArrayLiteral("disabled:") : usable.toLocal8Bit();
    qputenv(variable, address);
    if (probeBus(usable).state == BusState::Unusable) {
        // Qt asks for its shared connection only once: had without a bus, it stays without. The variable itself is the
        // bridge's only switch, but the programs started from here inherit that, and this one still needs it.
        qputenv(variable, "disabled:");
        static_cast<void>(QDBusConnection::sessionBus());
        qputenv(variable, address);
    }
}

/// A session manager that goes without a word has ended the session, too. The library of its protocol would call exit()
/// there and then, with status 1 and in the middle of whatever is done.
void endInOrderWhenTheSessionManagerDies()
{
    IceSetIOErrorHandler([](IceConn) { QCoreApplication::exit(); });
}

/// On a screen with a scale Qt looks for "name@2x" beside each image that a text names before it asks the text view,
/// which gives nothing out. The name may lie on a file server that is gone, and the look would wait for that.
void keepQtFromLookingForLargerImages()
{
    qputenv("QT_HIGHDPI_DISABLE_2X_IMAGE_LOADING", "1");
}

/// The style keeps the arrow of each entry with a submenu under a name of its own each time the entry is selected: a
/// session of much use would grow by megabytes, and a timer that looks after them would wake every session up. Nothing
/// that is drawn here is worth keeping.
void keepQtFromCachingPictures()
{
    QPixmapCache::setCacheLimit(0);
}

} // namespace

QString GraphicalSession::prepare()
{
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

    endInOrderWhenTheSessionManagerDies();
    keepQtFromLaunchingOrWaiting();
    keepQtFromLookingForLargerImages();

    if (!needsDisplay) {
        return {};
    }
    // Qt would end the process with a page of advice and a core dump.
    const QByteArray display = qgetenv("DISPLAY");
    if (display.isEmpty()) {
        return QStringLiteral("no graphical session: DISPLAY is not set");
    }
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    const bool answers = xcb_connection_has_error(connection) == 0;
    // Without it Qt gives up in the middle of its start, and trays cannot be watched.
    const bool hasXFixes = answers && xcb_get_extension_data(connection, &xcb_xfixes_id)->present;
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
    RootProperties::hearOnlyWhileShown();
    FreedMemory::giveBackAfterWindows();
    LateMouseEvents::keepFromQt();
    MenuMouse::follow();
    keepQtFromCachingPictures();
}
