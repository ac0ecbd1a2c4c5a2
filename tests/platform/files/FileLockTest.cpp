#include "platform/files/FileLock.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>
#include <optional>
#include <thread>

namespace
{

using namespace std::chrono_literals;

class FileLockTest : public testing::Test
{
protected:
    FileLockTest() { make(path); }

    static void make(const QString &name) { EXPECT_TRUE(QFile(name).open(QIODevice::WriteOnly)); }

    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("locked"));
};

TEST_F(FileLockTest, KeepsOthersOutForAsLongAsTheyAreWillingToWait)
{
    const FileLock first(path, FileLock::For::Writing);
    EXPECT_TRUE(first.isHeld());
    QElapsedTimer waited;
    waited.start();
    EXPECT_FALSE(FileLock(path, FileLock::For::Writing, 20ms).isHeld());
    EXPECT_GE(waited.elapsed(), 20);
}

TEST_F(FileLockTest, LetsReadersInTogetherButNoWriter)
{
    const FileLock reader(path, FileLock::For::Reading);
    EXPECT_TRUE(FileLock(path, FileLock::For::Reading, 1min).isHeld());
    EXPECT_FALSE(FileLock(path, FileLock::For::Writing, 0ms).isHeld());
}

TEST_F(FileLockTest, LetsOneInOnceTheOtherHasGone)
{
    std::optional<FileLock> first(std::in_place, path, FileLock::For::Writing);
    std::thread other([this] { EXPECT_TRUE(FileLock(path, FileLock::For::Writing, 1min).isHeld()); });
    first.reset();
    other.join();
}

TEST_F(FileLockTest, IsOfTheFileThatIsThereNowAndNotOfOneThatWasThereBefore)
{
    std::optional<FileLock> first(std::in_place, path, FileLock::For::Writing);
    std::thread other([this] {
        const FileLock second(path, FileLock::For::Writing, 1min);
        EXPECT_TRUE(second.isHeld());
        EXPECT_FALSE(FileLock(path, FileLock::For::Writing, 0ms).isHeld())
            << "the file that has taken the place is not locked";
    });
    const QString next = folder.filePath(QStringLiteral("next"));
    make(next);
    ASSERT_EQ(std::rename(QFile::encodeName(next).constData(), QFile::encodeName(path).constData()), 0);
    first.reset();
    other.join();
}

TEST_F(FileLockTest, HoldsNothingWhereThereIsNoFileOfOurOwnAndDoesNotWaitForOne)
{
    const QString link = folder.filePath(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(path, link));
    QElapsedTimer waited;
    waited.start();
    EXPECT_FALSE(FileLock(folder.filePath(QStringLiteral("none")), FileLock::For::Writing, 1min).isHeld());
    EXPECT_FALSE(FileLock(link, FileLock::For::Writing, 1min).isHeld());
    EXPECT_LT(waited.elapsed(), 30'000);
}

} // namespace
