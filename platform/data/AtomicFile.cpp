#include "platform/data/AtomicFile.h"

#include <QFileInfo>
#include <QSaveFile>

#include <sys/stat.h>
#include <unistd.h>

bool AtomicFile::write(const QString &path, const QByteArray &content, Access access)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {
        return false;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || (access == Access::OwnerOnly && ::fchmod(file.handle(), 0600) != 0)) {
        return false;
    }
    // commit() alone would put a truncated file in the old one's place: it overlooks that its own flush fails, and
    // takes no notice of what only fsync reports, such as a quota on a network file system.
    return file.write(content) == content.size() && file.flush() && ::fsync(file.handle()) == 0 && file.commit();
}
