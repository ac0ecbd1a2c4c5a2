#include "platform/files/AtomicFile.h"

#include "platform/files/FileDescriptor.h"
#include "platform/files/OwnFolder.h"
#include "platform/files/WholeWrite.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>

namespace
{

/// A new file in a folder, under a name of its own until it takes another. Removed again when it never does.
class Temporary final
{
public:
    Temporary(int folder, const QByteArray &finalName, mode_t mode)
        : m_folder(folder)
        , m_name(freshName(finalName))
        , m_file(::openat(folder, m_name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode))
        , m_isThere(m_file)
    {
    }
    ~Temporary()
    {
        if (m_isThere) {
            ::unlinkat(m_folder, m_name.constData(), 0);
        }
    }
    Temporary(const Temporary &) = delete;
    Temporary &operator=(const Temporary &) = delete;

    [[nodiscard]] const FileDescriptor &file() const { return m_file; }

    /// What a quota on a network file system has to say comes only with fsync.
    [[nodiscard]] bool become(const QByteArray &name)
    {
        if (::fsync(m_file.number()) != 0 || !m_file.close() ||
            ::renameat(m_folder, m_name.constData(), m_folder, name.constData()) != 0) {
            return false;
        }
        m_isThere = false;
        return true;
    }

private:
    static QByteArray freshName(const QByteArray &finalName)
    {
        constexpr char letters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
        QByteArray name = finalName + '.';
        for (int i = 0; i < 6; ++i) {
            name += letters[QRandomGenerator::system()->bounded(static_cast<int>(sizeof letters) - 1)];
        }
        return name;
    }

    int m_folder;
    QByteArray m_name;
    FileDescriptor m_file;
    bool m_isThere;
};

QString lastError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

/// Null when it has been written.
QString obstacleToWriting(const QString &path, const QByteArray &content, AtomicFile::Access access)
{
    const QFileInfo info(path);
    const QByteArray name = QFile::encodeName(info.fileName());
    const OwnFolder folder(info.path());
    if (!folder.isOurs()) {
        return folder.obstacle();
    }
    struct stat before = {};
    const bool exists = ::fstatat(folder.descriptor(), name.constData(), &before, AT_SYMLINK_NOFOLLOW) == 0;
    if (exists && !S_ISREG(before.st_mode) && !S_ISLNK(before.st_mode)) {
        return QStringLiteral("what is there is no file");
    }
    Temporary temporary(folder.descriptor(), name, access == AtomicFile::Access::OwnerOnly ? 0600 : 0666);
    if (!temporary.file()) {
        return lastError();
    }
    std::optional<mode_t> mode;
    if (access == AtomicFile::Access::OwnerOnly) {
        mode = 0600;
    } else if (exists && S_ISREG(before.st_mode)) {
        mode = before.st_mode & 07777;
    }
    if ((mode && ::fchmod(temporary.file().number(), *mode) != 0) || !writeWhole(temporary.file().number(), content) ||
        !temporary.become(name)) {
        return lastError();
    }
    return {};
}

} // namespace

bool AtomicFile::write(const QString &path, const QByteArray &content, Access access, QString *obstacle)
{
    const QString why = obstacleToWriting(path, content, access);
    if (obstacle) {
        *obstacle = why;
    }
    return why.isNull();
}
