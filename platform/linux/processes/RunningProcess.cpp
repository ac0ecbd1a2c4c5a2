#include "platform/linux/processes/RunningProcess.h"

#include <QByteArray>
#include <QFile>

#include <cerrno>
#include <csignal>

namespace
{

/// The value of a line such as "State:\tS (sleeping)" of /proc/<pid>/status.
QByteArray field(const QByteArray &status, const QByteArray &name)
{
    const qsizetype start = status.indexOf('\n' + name + ':');
    if (start < 0) {
        return {};
    }
    const qsizetype value = start + name.size() + 2;
    return status.mid(value, status.indexOf('\n', value) - value).trimmed();
}

} // namespace

bool isRunningProcess(pid_t pid)
{
    if (pid <= 0 || (::kill(pid, 0) != 0 && errno != EPERM)) {
        return false;
    }
    QFile file(QStringLiteral("/proc/%1/status").arg(pid));
    if (!file.open(QIODevice::ReadOnly)) {
        // Either it has just ended, or /proc hides other users' processes (mount option hidepid).
        return ::kill(pid, 0) == 0 || errno == EPERM;
    }
    const QByteArray status = file.readAll();
    const QByteArray state = field(status, "State");
    return field(status, "Tgid").toLongLong() == pid && !state.startsWith('Z') && !state.startsWith('X');
}
