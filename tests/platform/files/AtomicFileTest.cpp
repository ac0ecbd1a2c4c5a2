#include "platform/files/AtomicFile.h"

#include "tests/support/FullDisk.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

using AtomicFile::Access;

namespace
{

class AtomicFileTest : public testing::Test
{
protected:
    void write(const QByteArray &content, mode_t mode) const
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
        ASSERT_EQ(::fchmod(file.handle(), mode), 0);
    }

    [[nodiscard]] QByteArray content() const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    [[nodiscard]] mode_t mode() const
    {
        struct stat status = {};
        EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &status), 0);
        return status.st_mode & 0777;
    }

    [[nodiscard]] QStringList files() const { return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden); }

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file"));
};

TEST_F(AtomicFileTest, MakesAFileThatOnlyItsOwnerMayRead)
{
    EXPECT_TRUE(AtomicFile::write(path, "new", Access::OwnerOnly));
    EXPECT_EQ(content(), "new");
    EXPECT_EQ(mode(), 0600U);
    EXPECT_EQ(files(), QStringList{QStringLiteral("file")});
}

TEST_F(AtomicFileTest, TakesAFileAwayFromTheOthersWhoCouldReadIt)
{
    write("old", 0644);
    EXPECT_TRUE(AtomicFile::write(path, "new", Access::OwnerOnly));
    EXPECT_EQ(content(), "new");
    EXPECT_EQ(mode(), 0600U);
}

TEST_F(AtomicFileTest, LeavesTheModeWhenNothingIsSaid)
{
    write("old", 0640);
    EXPECT_TRUE(AtomicFile::write(path, "new", Access::AsBefore));
    EXPECT_EQ(content(), "new");
    EXPECT_EQ(mode(), 0640U);
}

TEST_F(AtomicFileTest, LeavesTheOldFileAndNothingElseWhenTheDiskIsFull)
{
    write("old", 0600);
    for (const rlim_t space : {0, 1, 4096, 100'000}) {
        const FullDisk disk(space);
        EXPECT_FALSE(AtomicFile::write(path, QByteArray(200'000, 'x'), Access::OwnerOnly)) << space;
        EXPECT_EQ(content(), "old");
    }
    EXPECT_EQ(files(), QStringList{QStringLiteral("file")});
}

TEST_F(AtomicFileTest, TakesTheNameOfASymbolicLinkAndLeavesWhatThatLeadsTo)
{
    const QString target = folder.filePath(QStringLiteral("target"));
    for (const Access access : {Access::OwnerOnly, Access::AsBefore}) {
        QFile::remove(path);
        QFile::remove(target);
        write("another's", 0644);
        ASSERT_TRUE(QFile::rename(path, target));
        ASSERT_TRUE(QFile::link(target, path));
        EXPECT_TRUE(AtomicFile::write(path, "new", access));
        EXPECT_FALSE(QFileInfo(path).isSymLink());
        EXPECT_EQ(content(), "new");
        QFile file(target);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), "another's");
        EXPECT_EQ(file.permissions() & (QFile::ReadOther | QFile::ReadOwner), QFile::ReadOther | QFile::ReadOwner);
    }
}

TEST_F(AtomicFileTest, LeavesAFolderOfSomebodyElseAlone)
{
    if (::chown(QFile::encodeName(folder.path()).constData(), 12345, 12345) != 0) {
        GTEST_SKIP() << "only root can give a folder away";
    }
    QString obstacle;
    EXPECT_FALSE(AtomicFile::write(path, "new", Access::OwnerOnly, &obstacle));
    EXPECT_EQ(obstacle, QStringLiteral("the folder belongs to somebody else"));
    EXPECT_EQ(files(), QStringList());
}

TEST_F(AtomicFileTest, RefusesAPlaceThatIsNoFile)
{
    ASSERT_TRUE(QDir().mkdir(path));
    EXPECT_FALSE(AtomicFile::write(path, "new", Access::OwnerOnly));
    EXPECT_FALSE(AtomicFile::write(folder.filePath(QStringLiteral("no/such/folder")), "new", Access::OwnerOnly));
}

} // namespace
