#include "tools/kivservice/AttachCommand.h"

#include "platform/linux/include/EventBusName.h"
#include "platform/linux/include/SessionBus.h"
#include "shell/ProductTexts.h"
#include "tools/kivservice/AgentSearch.h"
#include "tools/kivservice/AttachedService.h"
#include "tools/kivservice/VncSession.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QSocketNotifier>

#include <cstdio>
#include <optional>
#include <unistd.h>
#include <variant>

namespace
{
enum ExitStatus { Success = 0, Failure = 1, Usage = 2 };

void print(std::FILE *stream, const QByteArray &line)
{
    std::fprintf(stream, "%s\n", line.constData());
    std::fflush(stream);
}

int fail(const QString &reason, ExitStatus status = Failure)
{
    print(stderr, "kivservice: " + reason.toUtf8());
    return status;
}

/// The agent to attach to, or why there is none.
struct Target {
    pid_t pid = 0;
    QString obstacle;
};

Target findAgent()
{
    const QDBusReply<QStringList> names = SessionBus::instance().connection().interface()->registeredServiceNames();
    const std::vector<pid_t> agents = agentsAmong(names.value());
    if (agents.empty()) {
        return {0,
                QStringLiteral("no agent (%1) runs on this session bus").arg(QLatin1String(ProductTexts::programName))};
    }
    if (agents.size() > 1) {
        QStringList pids;
        for (const pid_t pid : agents) {
            pids += QString::number(pid);
        }
        return {0, QStringLiteral("several agents run on this session bus; choose one with --pid: ") + pids.join(u' ')};
    }
    return {agents.front(), {}};
}

/// One function object of several.
template <typename... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};
template <typename... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>; // Clang before 17 does not deduce it.

/// Carries the lines of standard input out until they end.
class LineLoop final : public QObject
{
public:
    explicit LineLoop(AttachedService &service)
        : m_service(service)
        , m_input(STDIN_FILENO, QSocketNotifier::Read)
    {
        connect(&m_input, &QSocketNotifier::activated, this, &LineLoop::readSome);
    }

private:
    void readSome()
    {
        char bytes[4096];
        const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
        m_pending.append(bytes, qMax<ssize_t>(count, 0));
        const bool ended = count <= 0;
        if (ended && !m_pending.isEmpty()) {
            m_pending += '\n';
        }
        for (qsizetype end = m_pending.indexOf('\n'); end >= 0; end = m_pending.indexOf('\n')) {
            const QByteArray line = m_pending.left(end);
            m_pending.remove(0, end + 1);
            if (const auto status = carryOut(ServiceLine::parse(line))) {
                stop(*status);
                return;
            }
        }
        if (ended) {
            stop(Success);
        }
    }

    void stop(int status)
    {
        m_input.setEnabled(false);
        QCoreApplication::exit(status);
    }

    /// The exit status when the line ends the command. Every kind of line goes to the agent unless it is named here;
    /// one that the agent cannot be sent does not compile.
    std::optional<int> carryOut(const ServiceLine::Line &line)
    {
        using namespace ServiceLine;
        return std::visit(Overloaded{[](const Nothing &) { return std::optional<int>(); },
                                     [](const Malformed &malformed) { return std::optional(fail(malformed.reason)); },
                                     [this](const Quit &quit) {
                                         return std::optional(failureOf(m_service.send(quit)).value_or(Success));
                                     },
                                     [this](const auto &command) { return failureOf(m_service.send(command)); }},
                          line);
    }

    static std::optional<int> failureOf(bool sent)
    {
        return sent ? std::nullopt : std::optional(fail(QStringLiteral("the agent cannot be reached")));
    }

    AttachedService &m_service;
    QSocketNotifier m_input;
    QByteArray m_pending;
};
} // namespace

int attachCommand(const QStringList &arguments)
{
    Target target;
    if (arguments.size() == 2 && arguments.front() == QLatin1String("--pid")) {
        target.pid = arguments.back().toInt();
    }
    if (!arguments.isEmpty() && target.pid <= 0) {
        return fail(QStringLiteral("usage: kivservice attach [--pid N]"), Usage);
    }
    if (!SessionBus::instance().isConnected()) {
        return fail(QStringLiteral("there is no session bus (DBUS_SESSION_BUS_ADDRESS)"));
    }
    if (target.pid == 0) {
        target = findAgent();
        if (target.pid == 0) {
            return fail(target.obstacle);
        }
    }

    const auto printLine = [](const QByteArray &line) { print(stdout, line); };
    VncSession session(printLine);
    AttachedService service({0, static_cast<UInt32>(target.pid)}, printLine,
                            [&session](std::uint32_t code) { session.carryOut(code); });
    if (!service.claim()) {
        return fail(QStringLiteral("process %1 is no agent of this session bus").arg(target.pid));
    }
    QDBusServiceWatcher agentWatcher(eventBusName(target.pid), SessionBus::instance().connection(),
                                     QDBusServiceWatcher::WatchForUnregistration);
    QObject::connect(&agentWatcher, &QDBusServiceWatcher::serviceUnregistered, &agentWatcher,
                     [] { QCoreApplication::exit(fail(QStringLiteral("the agent has left the session bus"))); });
    QObject::connect(&SessionBus::instance(), &SessionBus::disconnected, &agentWatcher,
                     [] { QCoreApplication::exit(fail(QStringLiteral("the session bus has gone"))); });
    print(stdout, "attached " + QByteArray::number(target.pid));

    LineLoop lines(service);
    return QCoreApplication::exec();
}
