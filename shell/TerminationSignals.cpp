#include "shell/TerminationSignals.h"

#include "platform/GraphicalSession.h"
#include "platform/LogCategories.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace
{
int wakeUp = -1;

// A signal handler may do next to nothing; a byte in a pipe wakes the event loop.
void onSignal(int)
{
    GraphicalSession::requestEnd();
    const int savedError = errno;
    [[maybe_unused]] const ssize_t written = ::write(wakeUp, "", 1);
    errno = savedError;
}

std::array<int, 2> openPipe()
{
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    for (const int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    return ends;
}

void setHandler(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGQUIT}) {
        ::sigaction(signal, &action, nullptr);
    }
}
} // namespace

TerminationSignals::TerminationSignals()
    : m_pipe(openPipe())
    , m_notifier(m_pipe[0], QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, [this] {
        char bytes[16];
        while (::read(m_pipe[0], bytes, sizeof bytes) > 0) {
        }
        qCDebug(agentLog, "a signal asks it to end");
        GraphicalSession::end();
    });
    wakeUp = m_pipe[1];
    setHandler(onSignal);
}

TerminationSignals::~TerminationSignals()
{
    setHandler(SIG_IGN);
    wakeUp = -1;
    m_notifier.setEnabled(false);
    for (const int end : m_pipe) {
        ::close(end);
    }
}
