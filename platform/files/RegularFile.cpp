#include "platform/files/RegularFile.h"

#include "platform/files/FileDescriptor.h"
#include "platform/files/OwnFolder.h"
#include "platform/files/WholeWrite.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>

namespace
{

/// Its size; nothing when it is anything but a regular file.
std::optional<qint64> sizeOf(int file)
{
    struct stat status = {};
    return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode) ? std::optional<qint64>(status.st_size)
                                                                  : std::nullopt;
}

} // namespace

std::optional<QByteArray> RegularFile::read(const QString &path, qsizetype maxBytes, Links links)
{
    const int following = links == Links::Refuse ? O_NOFOLLOW : 0;
    const FileDescriptor file(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | following));
    const std::optional<qint64> size = file ? sizeOf(file.number()) : std::nullopt;
    if (!size || *size > maxBytes) {
        return std::nullopt;
    }
    QFile reader;
    if (!reader.open(file.number(), QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QByteArray content = reader.read(*size + 1); // It may have grown meanwhile.
    return reader.error() == QFileDevice::NoError && content.size() <= maxBytes ? std::optional(content) : std::nullopt;
}

bool RegularFile::overwrite(const QString &path, const QByteArray &content)
{
    const QFileInfo info(path);
    const OwnFolder folder(info.path());
    if (!folder.isOurs()) {
        return false;
    }
    FileDescriptor file(::openat(folder.descriptor(), QFile::encodeName(info.fileName()).constData(),
                                 O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666));
    const std::optional<qint64> size = file ? sizeOf(file.number()) : std::nullopt;
    if (!size) {
        return false;
    }
    // What is new room comes first, and is given back when it cannot be had: so a full disk takes nothing of what is
    // there, since all else goes where bytes already are.
    const qsizetype present = std::min<qsizetype>(*size, content.size());
    if (::lseek(file.number(), present, SEEK_SET) < 0 || !writeWhole(file.number(), content.sliced(present))) {
        (void)::ftruncate(file.number(), *size);
        return false;
    }
    return ::lseek(file.number(), 0, SEEK_SET) == 0 && writeWhole(file.number(), content.first(present)) &&
           ::ftruncate(file.number(), content.size()) == 0 && file.close(); // Much is only written here.
}
