#include "platform/files/OwnFolder.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

/// Root may lead this process's user anywhere in any case, and what is missing leads nowhere.
bool isNobodyElses(const QString &path)
{
    struct stat status = {};
    if (::lstat(QFile::encodeName(path).constData(), &status) != 0) {
        return errno == ENOENT;
    }
    return status.st_uid == ::geteuid() || status.st_uid == 0;
}

} // namespace

OwnFolder::OwnFolder(const QString &path)
    : m_folder(::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    struct stat status = {};
    if (!m_folder || ::fstat(m_folder.number(), &status) != 0) {
        m_obstacle = QString::fromLocal8Bit(std::strerror(errno));
    } else if (status.st_uid != ::geteuid()) {
        refuse();
    }
}

OwnFolder OwnFolder::below(const QString &home, const QString &path)
{
    OwnFolder folder(path);
    QString step = home + u'/'; // The folder, should it be a link: that is nobody's within it.
    bool isSafe = isNobodyElses(step);
    for (const QString &name : path.mid(home.size()).split(u'/', Qt::SkipEmptyParts)) {
        step += name;
        isSafe = isSafe && isNobodyElses(step);
        step += u'/';
    }
    if (folder.isOurs() && !isSafe) {
        folder.refuse();
    }
    return folder;
}

void OwnFolder::refuse()
{
    m_obstacle = QStringLiteral("the folder belongs to somebody else");
}

QString OwnFolder::nearestTo(QString path)
{
    while (!QFileInfo::exists(path) && path != QFileInfo(path).path()) {
        path = QFileInfo(path).path();
    }
    return path;
}
