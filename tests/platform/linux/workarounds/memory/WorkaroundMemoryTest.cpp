#include "tests/platform/linux/workarounds/WorkaroundNeed.h"
#include "tests/support/ProcessMemory.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QPixmapCache>
#include <QStyleFactory>
#include <QStyleOptionButton>
#include <QTextBrowser>
#include <QWindow>

#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <chrono>
#include <cstdlib>
#include <malloc.h>
#include <memory>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{

using namespace std::chrono_literals;

/// Those that cost memory; the others are in WorkaroundNeedTest.
class WorkaroundMemory : public WorkaroundNeed
{
};

std::size_t heapInUse()
{
    return mallinfo2().uordblks;
}

/// In bytes.
qint64 residentMemory()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

} // namespace

TEST_F(WorkaroundMemory, FreedMemory)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer has an allocator of its own";
#endif
    constexpr int pieces = 32 * 1024;
    constexpr std::size_t size = 1000; // Small enough to come from the heap.
    std::vector<std::unique_ptr<char[]>> memory(pieces);
    for (auto &piece : memory) {
        piece = std::make_unique<char[]>(size);
    }
    const auto above = std::make_unique<char[]>(size);
    const qint64 before = residentMemory();
    memory.clear();
    tell("FreedMemory", residentMemory() > before - qint64(pieces * size) / 2);
}

TEST_F(WorkaroundMemory, FreedMemoryOfXlib)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer has an allocator of its own";
#endif
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    ASSERT_TRUE(x11);
    constexpr int windows = 100;
    for (int i = 0; i < windows; ++i) {
        QTextBrowser window;
        window.setWindowTitle(QStringLiteral("Window"));
        window.show();
        ASSERT_TRUE(waitUntil([&] { return window.windowHandle()->isExposed(); }));
    }
    const std::size_t before = heapInUse();
    XSync(x11->display(), False);
    const std::size_t after = heapInUse();
    constexpr std::size_t ofFewWindows = 2'000;
    tell("FreedMemoryOfXlib", before > after + ofFewWindows);
}

TEST_F(WorkaroundMemory, ThreadHeaps)
{
    std::unique_ptr<QByteArray> ofThread;
    std::thread([&] { ofThread = std::make_unique<QByteArray>(100, '.'); }).join();
    tell("ThreadHeaps", ProcessMemory::heapsOfThreads(getpid()) > 0);
}

TEST_F(WorkaroundMemory, PixmapCache)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer has an allocator of its own";
#endif
    open();
    for (int i = 0; i < 200; ++i) {
        menu.setActiveAction(i % 2 == 0 ? submenu->menuAction() : enabled);
        const QPixmap picture = menu.grab();
        ASSERT_FALSE(picture.isNull());
    }
    const std::size_t before = heapInUse();
    QPixmapCache::clear();
    const std::size_t after = heapInUse();
    constexpr std::size_t ofFewPictures = 20'000;
    tell("PixmapCache", before > after + ofFewPictures);
}

TEST_F(WorkaroundMemory, FlatButtons)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer has an allocator of its own";
#endif
    const std::unique_ptr<QStyle> style(QStyleFactory::create(QStringLiteral("Fusion")));
    QImage picture(100, 30, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&picture);
    QStyleOptionButton button;
    button.rect = picture.rect();
    const auto paintIn = [&](int colour) {
        button.palette.setColor(QPalette::Button, QColor(200, 200, colour));
        style->drawPrimitive(QStyle::PE_PanelButtonCommand, &button, &painter);
    };
    paintIn(0);
    const std::size_t before = heapInUse();
    constexpr int colours = 20;
    for (int i = 1; i <= colours; ++i) {
        paintIn(i * 10);
    }
    constexpr std::size_t ofEach = 8'000;
    tell("FlatButtons", heapInUse() > before + colours * ofEach);
}

TEST_F(WorkaroundMemory, CompiledPatterns)
{
    // The variable is asked for at the first pattern that is used.
    Subject subject;
    subject.environment().remove(QStringLiteral("QT_ENABLE_REGEXP_JIT"));
    ASSERT_TRUE(subject.start({QStringLiteral("pattern")}));
    ASSERT_TRUE(subject.endsWithin(20s));
    ASSERT_EQ(subject.process().exitCode(), EXIT_SUCCESS);
    tell("CompiledPatterns", subject.process().output().contains(" rwxp "));
}
