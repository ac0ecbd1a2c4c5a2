#include "platform/files/FileLock.h"

#include <QDeadlineTimer>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <utility>

namespace
{

enum class Lock { Held, Busy, Impossible };

Lock tryToLock(int file, FileLock::For purpose)
{
    if (::flock(file, (purpose == FileLock::For::Reading ? LOCK_SH : LOCK_EX) | LOCK_NB) == 0) {
        return Lock::Held;
    }
    return errno == EWOULDBLOCK || errno == EINTR ? Lock::Busy : Lock::Impossible;
}

/// Whoever had the lock may have put another file in its place.
bool isStillAt(const QByteArray &path, int file)
{
    struct stat open = {};
    struct stat there = {};
    return ::fstat(file, &open) == 0 && ::lstat(path.constData(), &there) == 0 && open.st_dev == there.st_dev &&
           open.st_ino == there.st_ino;
}

/// For a moment; false when the time is over.
bool hasWaited(const QDeadlineTimer &deadline)
{
    if (deadline.hasExpired()) {
        return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    return true;
}

} // namespace

FileLock::FileLock(const QString &path, For purpose, std::chrono::milliseconds patience)
{
    const QByteArray name = QFile::encodeName(path);
    const QDeadlineTimer deadline(patience);
    // A network file system takes a lock against all others only on what is opened for writing.
    const int access = purpose == For::Reading ? O_RDONLY : O_RDWR;
    do {
        FileDescriptor file(::open(name.constData(), access | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
        const Lock lock = file ? tryToLock(file.number(), purpose) : Lock::Impossible;
        m_isBusy = lock != Lock::Impossible;
        if (lock == Lock::Held && isStillAt(name, file.number())) {
            m_file = std::move(file);
            m_isHeld = true;
            m_isBusy = false;
        }
    } while (m_isBusy && hasWaited(deadline));
}
