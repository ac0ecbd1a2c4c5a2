#include "platform/LogOutput.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <climits>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace
{

/// The kernel gives out the lowest number that is free, so that what is opened next stands in the first gap.
void fillStandardDescriptors()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) < 0) {
            ::open("/dev/null", O_RDWR);
        }
    }
}

/// macOS cannot tell of a device, as a terminal is, and says of it what it says of a closed descriptor.
bool takesALine()
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

void writeLine(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const QByteArray line = qFormatLogMessage(type, context, message).toLocal8Bit().left(PIPE_BUF - 1) + '\n';
    const int terminal = openedTerminal();
    if (terminal >= 0 || takesALine()) {
        [[maybe_unused]] const ssize_t written =
            ::write(terminal >= 0 ? terminal : STDERR_FILENO, line.constData(), static_cast<std::size_t>(line.size()));
    }
    if (terminal >= 0) {
        ::close(terminal);
    }
}

} // namespace

void LogOutput::useStandardError()
{
    fillStandardDescriptors();
    qInstallMessageHandler(writeLine);
}
