#include "notify/queue/ReadWriteLock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

TEST(ReadWriteLock, IsRefusedToWhoHoldsItAndGivenAgainAfterwards)
{
    ReadWriteLock lock;
    {
        const ReadWriteLock::Hold first = lock.lockForWriting();
        EXPECT_TRUE(first);
        EXPECT_FALSE(lock.lockForWriting());
        EXPECT_FALSE(lock.lockForWriting()) << "a refusal has given the lock back";
    }
    EXPECT_TRUE(lock.lockForWriting());
}

TEST(ReadWriteLock, KeepsAnotherThreadWaiting)
{
    ReadWriteLock lock;
    std::atomic isFree = false;
    bool waited = false;
    std::thread other;
    {
        const ReadWriteLock::Hold hold = lock.lockForWriting();
        other = std::thread([&] {
            const ReadWriteLock::Hold later = lock.lockForWriting();
            waited = later && isFree;
        });
        isFree = true; // Only now may the other one get it.
    }
    other.join();
    EXPECT_TRUE(waited);
}
