#include "platform/files/FolderLock.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>
#include <thread>

namespace
{

using namespace std::chrono_literals;

class FolderLockTest : public testing::Test
{
protected:
    QTemporaryDir folder;
};

TEST_F(FolderLockTest, KeepsOthersOutForAsLongAsTheyAreWillingToWait)
{
    const FolderLock first(folder.path());
    EXPECT_TRUE(first.isHeld());
    QElapsedTimer waited;
    waited.start();
    EXPECT_FALSE(FolderLock(folder.path(), 20ms).isHeld());
    EXPECT_GE(waited.elapsed(), 20);
}

TEST_F(FolderLockTest, LetsOneInOnceTheOtherHasGone)
{
    std::optional<FolderLock> first(folder.path());
    std::thread other([this] { EXPECT_TRUE(FolderLock(folder.path(), 1min).isHeld()); });
    first.reset();
    other.join();
}

TEST_F(FolderLockTest, HoldsNothingWhereThereIsNoFolderAndDoesNotWaitForOne)
{
    QElapsedTimer waited;
    waited.start();
    EXPECT_FALSE(FolderLock(folder.filePath(QStringLiteral("none")), 1min).isHeld());
    EXPECT_LT(waited.elapsed(), 30'000);
}

TEST_F(FolderLockTest, LeavesNothingBehind)
{
    {
        const FolderLock lock(folder.path());
    }
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

} // namespace
