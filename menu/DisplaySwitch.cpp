#include "menu/DisplaySwitch.h"

#include "platform/GraphicalSession.h"
#include "platform/LogCategories.h"

#include <Carbon/Carbon.h>
#include <QDeadlineTimer>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{
bool mainDisplayHasSize(std::uint32_t width, std::uint32_t height)
{
    const CGRect bounds = CGDisplayBounds(CGMainDisplayID());
    return static_cast<std::uint32_t>(bounds.size.width) == width &&
           static_cast<std::uint32_t>(bounds.size.height) == height;
}

bool hasEnded(pid_t child)
{
    const pid_t ended = ::wait4(child, nullptr, WNOHANG, nullptr);
    return ended > 0 || (ended < 0 && errno != EINTR);
}

/// False when the session ends before the tool does. The event loop, which stands still, would not learn of that; a
/// call that blocks until the tool has ended could be missed by a signal that comes just before it.
bool waitForTool(pid_t child, const char *tool, QDeadlineTimer timeout)
{
    using namespace std::chrono_literals;
    for (std::chrono::milliseconds pause = 1ms; !hasEnded(child); pause = std::min(2 * pause, 20ms)) {
        if (GraphicalSession::isEnding()) {
            return false;
        }
        if (!timeout.isForever() && timeout.hasExpired()) {
            qCWarning(itemLog, "still waiting for %s, process %d, to switch the display", tool, child);
            timeout = QDeadlineTimer(QDeadlineTimer::Forever);
        }
        std::this_thread::sleep_for(pause);
    }
    return true;
}

/// Runs the tool and waits for it. False when it could not even be forked, or has not come to its end; a missing tool
/// is one that did nothing.
bool runTool(const char *tool, const char *width, const char *height, std::chrono::milliseconds timeout)
{
    // Nothing of this process is copied for the moment until the tool takes over: it may be one of hundreds on the
    // host. NOLINTNEXTLINE(clang-analyzer-security.insecureAPI.vfork)
    const pid_t child = ::vfork();
    if (child < 0) {
        return false;
    }
    if (child == 0) {
        ::signal(SIGPIPE, SIG_DFL); // Ignored here, and it would be there.
        ::execl(tool, tool, "dspcmd", "set", "-w", width, "-h", height, "-c", static_cast<char *>(nullptr));
        ::_exit(0);
    }
    return waitForTool(child, tool, QDeadlineTimer(timeout));
}
} // namespace

bool set_dmod(std::uint32_t width, std::uint32_t height, const char *tool, std::chrono::milliseconds timeout)
{
    if (mainDisplayHasSize(width, height)) {
        return true;
    }
    char widthText[64];
    char heightText[64];
    std::snprintf(widthText, sizeof widthText - 1, "%d", static_cast<int>(width));
    std::snprintf(heightText, sizeof heightText - 1, "%d", static_cast<int>(height));
    return runTool(tool, widthText, heightText, timeout) && mainDisplayHasSize(width, height);
}
