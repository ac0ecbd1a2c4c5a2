#include "platform/processes/SessionLock.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <bsm/audit_session.h>
#include <cerrno>
#include <sys/file.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

// The two calls by which the lock finds its file, and the one that locks it.

namespace
{

std::string cacheFolder;
int auditSession = 0;
bool auditWorks = true;
std::vector<int> flockErrors; ///< The next calls fail by these.

} // namespace

extern "C" int getaudit_addr(auditinfo_addr_t *info, int length)
{
    if (!auditWorks || length != static_cast<int>(sizeof *info)) {
        return -1;
    }
    info->ai_asid = auditSession;
    return 0;
}

extern "C" std::size_t confstr(int name, char *buffer, std::size_t size) noexcept
{
    if (name != _CS_DARWIN_USER_CACHE_DIR || cacheFolder.empty()) {
        return 0;
    }
    buffer[cacheFolder.copy(buffer, size - 1)] = '\0';
    return cacheFolder.size() + 1; // What it takes, however much of it has been given.
}

extern "C" int flock(int file, int operation) noexcept
{
    if (!flockErrors.empty()) {
        errno = flockErrors.front();
        flockErrors.erase(flockErrors.begin());
        return -1;
    }
    return static_cast<int>(::syscall(SYS_flock, file, operation));
}

namespace
{

class MacSessionLock : public testing::Test
{
protected:
    MacSessionLock()
    {
        cacheFolder = (folder.path() + u'/').toStdString();
        auditSession = 100'003;
        auditWorks = true;
        flockErrors.clear();
    }

    [[nodiscard]] QStringList files() const { return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden); }

    QTemporaryDir folder;
};

} // namespace

TEST_F(MacSessionLock, IsHeldByOneOfASessionUntilItEnds)
{
    SessionLock second;
    {
        SessionLock first;
        EXPECT_TRUE(first.tryAcquire());
        EXPECT_FALSE(second.tryAcquire());
    }
    SessionLock third;
    EXPECT_TRUE(third.tryAcquire());
}

TEST_F(MacSessionLock, IsAnotherOneForAnotherSessionOfTheSameUser)
{
    SessionLock here;
    EXPECT_TRUE(here.tryAcquire());
    auditSession = 100'017;
    SessionLock there;
    EXPECT_TRUE(there.tryAcquire());
}

TEST_F(MacSessionLock, IsAFileInTheFolderForCachesThatOnlyTheUserCanOpen)
{
    SessionLock lock;
    EXPECT_TRUE(lock.tryAcquire());
    ASSERT_EQ(files(), QStringList{QStringLiteral("com.tamborel.kivmenua.100003.lock")});
    const QFileInfo file(folder.filePath(files().front()));
    EXPECT_EQ(file.permissions() & (QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther),
              QFile::Permissions());
}

TEST_F(MacSessionLock, KeepsNobodyOutWhenItCannotBeMade)
{
    cacheFolder = "/does/not/exist/";
    SessionLock unwritable;
    EXPECT_TRUE(unwritable.tryAcquire());
    cacheFolder.clear();
    SessionLock homeless;
    EXPECT_TRUE(homeless.tryAcquire());
    auditWorks = false;
    SessionLock unknown;
    EXPECT_TRUE(unknown.tryAcquire());
}

TEST_F(MacSessionLock, IsNeverAFileBelowTheBeginningOfAPathThatIsTooLong)
{
    const std::size_t mostOfIt = 1023;
    cacheFolder = folder.path().toStdString();
    cacheFolder += std::string(mostOfIt - cacheFolder.size(), '/') + "further/";
    SessionLock lock;
    EXPECT_TRUE(lock.tryAcquire());
    EXPECT_EQ(files(), QStringList());
}

TEST_F(MacSessionLock, IsTriedAgainWhenASignalInterruptsIt)
{
    SessionLock first;
    EXPECT_TRUE(first.tryAcquire());
    SessionLock second;
    flockErrors = {EINTR, EINTR};
    EXPECT_FALSE(second.tryAcquire());
    EXPECT_TRUE(flockErrors.empty());
}

TEST_F(MacSessionLock, KeepsNobodyOutWhereTheFileSystemKnowsNoLocks)
{
    SessionLock lock;
    flockErrors = {ENOTSUP};
    EXPECT_TRUE(lock.tryAcquire());
}
