#include "platform/files/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdarg>
#include <fcntl.h>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>

// What a disk and a stranger do to a file while it is written: the calls of this program to the system pass through
// here.

namespace
{

bool isQuotaUsedUp = false;
std::string linkedFirst; ///< Where a link leads that a stranger makes under the name of each new file; empty for none.

} // namespace

extern "C" int fsync(int file)
{
    if (isQuotaUsedUp) {
        errno = EDQUOT;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_fsync, file));
}

extern "C" int openat(int folder, const char *name, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    if ((flags & O_CREAT) != 0 && !linkedFirst.empty()) {
        EXPECT_EQ(::symlinkat(linkedFirst.c_str(), folder, name), 0);
    }
    return static_cast<int>(::syscall(SYS_openat, folder, name, flags, mode));
}

namespace
{

QByteArray contentAt(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void putThere(const QString &path, const QByteArray &content)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(content), content.size());
}

} // namespace

TEST(AtomicFileFault, LeavesTheOldFileWhenTheServerHasNoRoomAfterAll)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file"));
    putThere(path, "old");
    isQuotaUsedUp = true;
    const auto room = qScopeGuard([] { isQuotaUsedUp = false; });
    QString obstacle;
    EXPECT_FALSE(AtomicFile::write(path, "new", AtomicFile::Access::OwnerOnly, &obstacle));
    EXPECT_FALSE(obstacle.isEmpty());
    EXPECT_EQ(contentAt(path), "old");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("file")});
}

TEST(AtomicFileFault, WritesNowhereThatALinkLeadsToInPlaceOfItsTemporaryFile)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file"));
    const QString another = folder.filePath(QStringLiteral("another's"));
    putThere(path, "old");
    putThere(another, "another's");
    linkedFirst = QFile::encodeName(another).toStdString();
    const auto gone = qScopeGuard([] { linkedFirst.clear(); });
    EXPECT_FALSE(AtomicFile::write(path, "new", AtomicFile::Access::OwnerOnly));
    EXPECT_EQ(contentAt(another), "another's");
    EXPECT_EQ(contentAt(path), "old");
}
