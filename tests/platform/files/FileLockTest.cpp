#include "platform/files/FileLock.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>
#include <fcntl.h>
#include <future>
#include <optional>
#include <sys/stat.h>
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

TEST_F(FileLockTest, GivesUpSoonWhenNothingIsSaid)
{
    std::optional<FileLock> first(std::in_place, path, FileLock::For::Writing);
    const auto second =
        std::async(std::launch::async, [this] { return FileLock(path, FileLock::For::Writing).isHeld(); });
    EXPECT_EQ(second.wait_for(20s), std::future_status::ready) << "one that is stopped must not stop us";
    first.reset();
}

TEST_F(FileLockTest, TellsWhoIsInTheWayFromAFileThatCannotBeLocked)
{
    const FileLock first(path, FileLock::For::Writing);
    EXPECT_FALSE(first.isBusy());
    EXPECT_TRUE(FileLock(path, FileLock::For::Writing, 0ms).isBusy());
    EXPECT_FALSE(FileLock(folder.filePath(QStringLiteral("none")), FileLock::For::Writing, 0ms).isBusy());
}

TEST_F(FileLockTest, DoesNotWaitForAPipeThatNobodyWritesTo)
{
    const QString pipe = folder.filePath(QStringLiteral("pipe"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const auto lock = std::async(std::launch::async, [&] { return FileLock(pipe, FileLock::For::Reading).isHeld(); });
    EXPECT_EQ(lock.wait_for(20s), std::future_status::ready);
    const FileDescriptor writer(::open(QFile::encodeName(pipe).constData(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
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
