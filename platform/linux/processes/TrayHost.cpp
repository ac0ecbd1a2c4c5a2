#include "platform/linux/processes/TrayHost.h"

#include "platform/linux/include/ProcessOfWindow.h"
#include "platform/linux/include/SessionBus.h"
#include "platform/linux/include/XConnection.h"

#include <QElapsedTimer>

namespace
{

pid_t findTrayHost()
{
    const xcb_window_t tray = XConnection::selectionOwner(XConnection::traySelection());
    if (const pid_t pid = tray == XCB_NONE ? 0 : processOfWindow(tray); pid != 0) {
        return pid;
    }
    return static_cast<pid_t>(
        SessionBus::instance().processOf(QStringLiteral("org.kde.StatusNotifierWatcher")).value_or(0));
}

} // namespace

pid_t trayHost()
{
    static QElapsedTimer age;
    static pid_t found = 0;
    constexpr qint64 trustedMilliseconds = 100;
    if (!age.isValid() || age.hasExpired(trustedMilliseconds)) {
        found = findTrayHost();
        age.start();
    }
    return found;
}
