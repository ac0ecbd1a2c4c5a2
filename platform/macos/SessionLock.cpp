#include "platform/SessionLock.h"

#include "platform/ProductTexts.h"

#include <QByteArray>

#include <bsm/audit_session.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

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
    char folder[1024];
    if (::getaudit_addr(&session, sizeof session) != 0 ||
        ::confstr(_CS_DARWIN_USER_CACHE_DIR, folder, sizeof folder) == 0) {
        return true;
    }
    const QByteArray path = QByteArray(folder) + ProductTexts::lockFile + QByteArray::number(session.ai_asid) + ".lock";
    d->file = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    return d->file < 0 || ::flock(d->file, LOCK_EX | LOCK_NB) == 0;
}
