#include "platform/files/FolderLock.h"

#include <QDeadlineTimer>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>

FolderLock::FolderLock(const QString &folder, std::chrono::milliseconds patience)
    : m_folder(::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    const QDeadlineTimer deadline(patience);
    while (m_folder) {
        m_isHeld = ::flock(m_folder.number(), LOCK_EX | LOCK_NB) == 0;
        if (m_isHeld || (errno != EWOULDBLOCK && errno != EINTR) || deadline.hasExpired()) {
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}
