#include "platform/SessionLock.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <bsm/audit_session.h>
#include <unistd.h>

// The two calls by which the lock finds its file.

namespace
{

std::string cacheFolder;
int auditSession = 0;
bool auditWorks = true;

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
    if (name != _CS_DARWIN_USER_CACHE_DIR || cacheFolder.empty() || cacheFolder.size() >= size) {
        return 0;
    }
    return cacheFolder.copy(buffer, size) + (buffer[cacheFolder.size()] = '\0') + 1;
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
