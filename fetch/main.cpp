#include "fetch/FeedFetch.h"

#include <QCoreApplication>

#include <climits>
#include <poll.h>
#include <unistd.h>

namespace
{

/// To standard error, which is the agent's; some builds of Qt would hand it to the system log. What is not taken at
/// once is lost: a reader that has stopped must not keep this program.
void writeLine(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const QByteArray line =
        ("kivfetch: " + qFormatLogMessage(type, context, message).toLocal8Bit()).left(PIPE_BUF - 1) + '\n';
    pollfd output{STDERR_FILENO, POLLOUT, 0};
    if (::poll(&output, 1, 0) == 1 && (output.revents & POLLOUT) != 0) {
        [[maybe_unused]] const ssize_t written =
            ::write(STDERR_FILENO, line.constData(), static_cast<std::size_t>(line.size()));
    }
}

} // namespace

int main(int argc, char **argv)
{
    qInstallMessageHandler(writeLine);
    const QCoreApplication application(argc, argv);
    fetchFeed(QCoreApplication::arguments());
}
