#include "fetch/StandardOutput.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <unistd.h>

namespace
{

/// macOS cannot tell of a device, as a terminal is, and says of it what it says of a closed descriptor.
bool agentTakesALine()
{
    pollfd output{STDERR_FILENO, POLLOUT, 0};
    if (::poll(&output, 1, 0) != 1) {
        return false;
    }
    return (output.revents & POLLOUT) != 0 ||
           ((output.revents & POLLNVAL) != 0 && ::fcntl(STDERR_FILENO, F_GETFD) >= 0);
}

/// Of a terminal that takes a byte, a line may take for ever. An opening of its own need not wait, and leaves that of
/// the user's shell as it is. -1 for anything else.
int openedTerminal()
{
    std::array<char, PATH_MAX> name{};
    constexpr int flags = O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    return ::ttyname_r(STDERR_FILENO, name.data(), name.size()) == 0 ? ::open(name.data(), flags) : -1;
}

} // namespace

void writeToStandardOutput(std::string_view bytes) noexcept
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (written > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            std::_Exit(EXIT_FAILURE);
        }
    }
}

void sayOnStandardError(std::string_view text)
{
    const std::string line = ("kivfetch: " + std::string(text)).substr(0, PIPE_BUF - 1) + '\n';
    const int terminal = openedTerminal();
    if (terminal >= 0 || agentTakesALine()) {
        [[maybe_unused]] const ssize_t written =
            ::write(terminal >= 0 ? terminal : STDERR_FILENO, line.data(), line.size());
    }
    if (terminal >= 0) {
        ::close(terminal);
    }
}
