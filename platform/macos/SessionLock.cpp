#include "platform/processes/SessionLock.h"

#include "platform/ProductTexts.h"

#include <QByteArray>

#include <bsm/audit_session.h>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace
{

/// The user's folder for caches, with a slash at its end; nothing where there is none, or one with too long a name.
QByteArray folderForCaches()
{
    char folder[1024];
    const std::size_t needed = ::confstr(_CS_DARWIN_USER_CACHE_DIR, folder, sizeof folder);
    return needed == 0 || needed > sizeof folder ? QByteArray() : QByteArray(folder);
}

/// Without waiting. What else goes wrong, as where a file system knows no locks, does not mean that somebody has it.
bool isLockedByAnother(int file)
{
    while (::flock(file, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EINTR) {
            return errno == EWOULDBLOCK;
        }
    }
    return false;
}

} // namespace

/// The lock is an open file in the user's folder for caches, one for each login session (audit session), and released
/// by the kernel when the process ends. Not in the temporary folder, which the system clears of what is some days old:
/// the next copy would make a file of its own.
class SessionLock::Private
{
public:
    int file = -1;
};

SessionLock::SessionLock()
    : d(std::make_unique<Private>())
{
}

SessionLock::~SessionLock()
{
    if (d->file >= 0) {
        ::close(d->file);
    }
}

bool SessionLock::tryAcquire()
{
    auditinfo_addr_t session{};
    const QByteArray folder = folderForCaches();
    if (::getaudit_addr(&session, sizeof session) != 0 || folder.isEmpty()) {
        return true;
    }
    const QByteArray path = folder + ProductTexts::lockFile + QByteArray::number(session.ai_asid) + ".lock";
    d->file = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    return d->file < 0 || !isLockedByAnother(d->file);
}
