#include "platform/files/RegularFile.h"

#include "platform/files/FileDescriptor.h"
#include "platform/files/OwnFolder.h"
#include "platform/files/WholeWrite.h"

#include <QFile>
#include <QFileInfo>

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
    return file && sizeOf(file.number()) && ::ftruncate(file.number(), 0) == 0 && writeWhole(file.number(), content) &&
           file.close(); // Much is only written here.
}
