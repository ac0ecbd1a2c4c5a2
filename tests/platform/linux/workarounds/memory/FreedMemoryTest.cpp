#include "platform/linux/workarounds/memory/FreedMemory.h"

#include "tests/support/WaitUntil.h"

#include <QCoreApplication>
#include <QFile>
#include <QTextBrowser>
#include <QWindow>

#include <gtest/gtest.h>

#include <malloc.h>
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

/// The heap memory in use, in bytes.
std::size_t heapInUse()
{
    return mallinfo2().uordblks;
}

void showAndHideWindows(int count)
{
    for (int i = 0; i < count; ++i) {
        QTextBrowser window;
        window.setWindowTitle(QStringLiteral("Window"));
        window.show();
        EXPECT_TRUE(waitUntil([&] { return window.windowHandle()->isExposed(); }));
    }
}

class FreedMemoryTest : public testing::Test
{
protected:
    void SetUp() override
    {
#ifdef __SANITIZE_ADDRESS__
        GTEST_SKIP() << "the sanitizer has an allocator of its own";
#endif
        static const bool once = [] {
            FreedMemory::giveBackAfterWindows();
            return true;
        }();
        EXPECT_TRUE(once);
    }
};

TEST_F(FreedMemoryTest, GoesBackToTheSystemAfterAWindowHasGone)
{
    constexpr int pieces = 32 * 1024;
    constexpr qsizetype size = 1000; // Small enough to come from the heap.
    QWindow window;
    window.show();
    // Of Qt's own, which no compiler can leave out because nobody reads them.
    std::vector<QByteArray> memory(pieces);
    for (QByteArray &piece : memory) {
        piece = QByteArray(size, 'x');
    }
    const QByteArray above(size, 'x'); // Keeps the heap from shrinking by itself.
    memory.clear();
    const qint64 before = residentMemory();
    window.hide();
    EXPECT_TRUE(waitUntil([before] { return residentMemory() < before - pieces * size / 2; }));
}

TEST_F(FreedMemoryTest, IsWhatXlibKeepsAsWell)
{
    constexpr int windows = 200;
    constexpr std::size_t perWindow = 180; // 120 were seen with it, and 240 without.
    showAndHideWindows(windows / 4);       // With what is kept once for all.
    const std::size_t before = heapInUse();
    showAndHideWindows(windows);
    EXPECT_TRUE(waitUntil([before] { return heapInUse() < before + windows * perWindow; })) << heapInUse() - before;
}

} // namespace
