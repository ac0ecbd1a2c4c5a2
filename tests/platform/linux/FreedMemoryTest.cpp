#include "platform/linux/FreedMemory.h"

#include "tests/support/WaitUntil.h"

#include <QCoreApplication>
#include <QFile>
#include <QWindow>

#include <gtest/gtest.h>

#include <memory>
#include <unistd.h>
#include <vector>

namespace
{

/// The memory that this process occupies, in bytes.
qint64 residentMemory()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

TEST(FreedMemory, GoesBackToTheSystemAfterAWindowHasGone)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer has an allocator of its own";
#endif
    constexpr int pieces = 32 * 1024;
    constexpr std::size_t size = 1000; // Small enough to come from the heap.
    FreedMemory::giveBackAfterWindows();
    QWindow window;
    window.show();
    std::vector<std::unique_ptr<char[]>> memory(pieces);
    for (auto &piece : memory) {
        piece = std::make_unique<char[]>(size);
    }
    const auto above = std::make_unique<char[]>(size); // Keeps the heap from shrinking by itself.
    memory.clear();
    const qint64 before = residentMemory();
    window.hide();
    EXPECT_TRUE(waitUntil([before] { return residentMemory() < before - qint64(pieces * size) / 2; }));
}

} // namespace
