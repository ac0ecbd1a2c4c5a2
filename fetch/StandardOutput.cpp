#include "fetch/StandardOutput.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <poll.h>
#include <string>
#include <unistd.h>

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
    pollfd output{STDERR_FILENO, POLLOUT, 0};
    if (::poll(&output, 1, 0) == 1 && (output.revents & POLLOUT) != 0) {
        [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
    }
}
