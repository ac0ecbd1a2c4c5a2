#include "platform/linux/processes/TrayHost.h"

#include "platform/linux/include/ProcessOfWindow.h"
#include "platform/linux/include/SessionBus.h"
#include "platform/linux/include/XConnection.h"

#include <QElapsedTimer>

#include <chrono>
#include <unistd.h>

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

pid_t hostInPlace(pid_t found, std::chrono::milliseconds missing) noexcept
{
    using namespace std::chrono_literals;
    constexpr auto patience = 3s;
    return found == 0 && missing >= patience ? ::getpid() : found;
}

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

pid_t itemHost()
{
    static QElapsedTimer missing;
    const pid_t found = trayHost();
    if (found != 0 || !missing.isValid()) {
        missing.start();
    }
    return hostInPlace(found, std::chrono::milliseconds(missing.elapsed()));
}
