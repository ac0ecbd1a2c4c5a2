#include "platform/files/OwnFolder.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

OwnFolder::OwnFolder(const QString &path)
    : m_folder(::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    struct stat status = {};
    if (!m_folder || ::fstat(m_folder.number(), &status) != 0) {
        m_obstacle = QString::fromLocal8Bit(std::strerror(errno));
    } else if (status.st_uid != ::geteuid()) {
        m_obstacle = QStringLiteral("the folder belongs to somebody else");
    }
}

QString OwnFolder::nearestTo(QString path)
{
    while (!QFileInfo::exists(path) && path != QFileInfo(path).path()) {
        path = QFileInfo(path).path();
    }
    return path;
}
