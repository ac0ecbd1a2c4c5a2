#include "menu/DisplaySwitch.h"

#include <Carbon/Carbon.h>

#include <cerrno>
#include <cstdio>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
bool mainDisplayHasSize(std::uint32_t width, std::uint32_t height)
{
    const CGRect bounds = CGDisplayBounds(CGMainDisplayID());
    return static_cast<std::uint32_t>(bounds.size.width) == width &&
           static_cast<std::uint32_t>(bounds.size.height) == height;
}

/// Runs the tool and waits for it. False when it could not even be forked; a missing tool is one that did nothing.
bool runTool(const char *tool, const char *width, const char *height)
{
    // Nothing of this process is copied for the moment until the tool takes over: it may be one of hundreds on the
    // host. NOLINTNEXTLINE(clang-analyzer-security.insecureAPI.vfork)
    const pid_t child = ::vfork();
    if (child < 0) {
        return false;
    }
    if (child == 0) {
        ::execl(tool, tool, "dspcmd", "set", "-w", width, "-h", height, "-c", static_cast<char *>(nullptr));
        ::_exit(0);
    }
    while (::wait4(child, nullptr, 0, nullptr) < 0 && errno == EINTR) {
    }
    return true;
}
} // namespace

bool set_dmod(std::uint32_t width, std::uint32_t height, const char *tool)
{
    if (mainDisplayHasSize(width, height)) {
        return true;
    }
    char widthText[64];
    char heightText[64];
    std::snprintf(widthText, sizeof widthText - 1, "%d", static_cast<int>(width));
    std::snprintf(heightText, sizeof heightText - 1, "%d", static_cast<int>(height));
    return runTool(tool, widthText, heightText) && mainDisplayHasSize(width, height);
}
