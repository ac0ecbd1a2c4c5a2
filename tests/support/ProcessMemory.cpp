#include "tests/support/ProcessMemory.h"

#include <QByteArray>
#include <QFile>

namespace
{

/// The number of a line such as "VmHWM:    1234 kB" of a file of /proc.
qint64 kilobytes(const QByteArray &text, const QByteArray &name)
{
    const qsizetype line = ('\n' + text).indexOf('\n' + name + ':');
    return line < 0 ? 0 : text.mid(line + name.size() + 1).trimmed().split(' ').first().toLongLong();
}

QByteArray contentOf(qint64 pid, const char *name)
{
    QFile file(QStringLiteral("/proc/%1/%2").arg(pid).arg(QLatin1String(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

qint64 ProcessMemory::peakKilobytes(qint64 pid)
{
    return kilobytes(contentOf(pid, "status"), "VmHWM");
}

qint64 ProcessMemory::privateKilobytes(qint64 pid)
{
    return kilobytes(contentOf(pid, "smaps_rollup"), "Private_Dirty");
}
