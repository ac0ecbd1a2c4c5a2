#include "fetch/StandardOutput.h"

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
    if (agentTakesALine()) {
        [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
    }
}
