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

bool ProcessMemory::forgetPeak()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    return file.open(QIODevice::WriteOnly) && file.write("5") == 1 && file.flush();
}

qint64 ProcessMemory::privateKilobytes(qint64 pid)
{
    return kilobytes(contentOf(pid, "smaps_rollup"), "Private_Dirty");
}

int ProcessMemory::heapsOfThreads(qint64 pid)
{
    constexpr qulonglong reservation = 64ULL * 1024 * 1024;
    const QList<QByteArray> lines = contentOf(pid, "maps").split('\n');
    int heaps = 0;
    for (qsizetype i = 0; i + 1 < lines.size(); ++i) {
        const QByteArrayList used = lines[i].split(' ');
        const QByteArrayList reserved = lines[i + 1].split(' ');
        const qulonglong begin = used.value(0).split('-').value(0).toULongLong(nullptr, 16);
        const QByteArrayList rest = reserved.value(0).split('-');
        const bool isHeap = begin % reservation == 0 && used.value(1) == "rw-p" && reserved.value(1) == "---p" &&
                            rest.value(1).toULongLong(nullptr, 16) == begin + reservation;
        heaps += isHeap ? 1 : 0;
    }
    return heaps;
}

bool ProcessMemory::hasCodeThatItWrote(qint64 pid)
{
    return contentOf(pid, "maps").contains(" rwx");
}
