// The measuring programs' eyes and hands on a display. Prints one line for each window that comes or goes:
//   TIME map|unmap WINDOW X Y WIDTH HEIGHT embedded|free
// and takes lines on standard input, each answered by "TIME done ...":
//   click X Y BUTTON    the time is that of the press
//   move X Y            moves the pointer
//   key CODE            presses a key
//   change              changes a property of the root window
//   place WINDOW        ... X Y WIDTH HEIGHT on the screen; "none" without such a window
//   tray                ... WINDOW that takes status items; 0 without one
// Times are CLOCK_MONOTONIC in nanoseconds. Ends with its input or with the X server.

#include "bench/xwatch/WindowWatch.h"

#include <cstdio>
#include <poll.h>
#include <sstream>
#include <string>
#include <unistd.h>

namespace
{

void report(std::int64_t time, xcb_window_t window, const WindowWatch::Window &state)
{
    std::printf("%lld %s %u %d %d %d %d %s\n", static_cast<long long>(time), state.isMapped ? "map" : "unmap", window,
                state.x, state.y, state.width, state.height, state.isEmbedded ? "embedded" : "free");
    std::fflush(stdout);
}

void carryOut(WindowWatch &watch, const std::string &line)
{
    std::istringstream words(line);
    std::string verb;
    words >> verb;
    std::int64_t time = now();
    std::string answer;
    if (verb == "click" || verb == "move") {
        int x = 0;
        int y = 0;
        int button = 0;
        words >> x >> y >> button;
        if (verb == "click") {
            time = watch.click(x, y, button);
        } else {
            watch.movePointer(x, y);
        }
    } else if (verb == "key") {
        int code = 0;
        words >> code;
        watch.pressKey(static_cast<std::uint8_t>(code));
    } else if (verb == "change") {
        watch.changeRootProperty();
    } else if (verb == "place") {
        xcb_window_t window = XCB_NONE;
        words >> window;
        answer = watch.placeOf(window);
        answer = answer.empty() ? "none" : answer;
    } else if (verb == "tray") {
        answer = std::to_string(watch.tray());
    }
    std::printf("%lld done %s\n", static_cast<long long>(time), answer.c_str());
    std::fflush(stdout);
}

/// Takes the whole lines out of what has been read. False at the end of the input.
bool readCommands(WindowWatch &watch)
{
    static std::string pending;
    char bytes[4096];
    const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
    if (count <= 0) {
        return false;
    }
    pending.append(bytes, static_cast<std::size_t>(count));
    for (std::size_t end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
        carryOut(watch, pending.substr(0, end));
        pending.erase(0, end + 1);
    }
    return true;
}

} // namespace

int main()
{
    WindowWatch watch(report);
    if (!watch.isConnected()) {
        std::fputs("xwatch: no X server\n", stderr);
        return 1;
    }
    watch.announceOneDesktop();
    std::printf("%lld done\n", static_cast<long long>(now()));
    std::fflush(stdout);
    while (watch.handleEvents()) {
        pollfd sources[] = {{watch.fileDescriptor(), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
        ::poll(sources, 2, -1);
        // Events first: an answer to a command may have been waited for together with them.
        if (!watch.handleEvents() || (sources[1].revents != 0 && !readCommands(watch))) {
            break;
        }
    }
    return 0;
}
