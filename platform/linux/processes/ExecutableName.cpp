#include "platform/linux/include/ExecutableName.h"

#include <QFile>
#include <QFileInfo>

QByteArray executableName(pid_t pid)
{
    const QString folder = QStringLiteral("/proc/%1").arg(pid);
    QString target = QFile::symLinkTarget(folder + QStringLiteral("/exe"));
    // What the kernel adds when the file was replaced or removed while it runs.
    const QString deleted = QStringLiteral(" (deleted)");
    if (target.endsWith(deleted)) {
        target.chop(deleted.size());
    }
    if (!target.isEmpty()) {
        return QFileInfo(target).fileName().toUtf8();
    }
    QFile file(folder + QStringLiteral("/comm"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
}
