#include "notify/queue/CacheWriter.h"

#include "platform/data/PropertyList.h"
#include "tests/support/WaitUntil.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace
{

constexpr qsizetype longList = CacheWriter::maxBytesAtOnce + 1;

class CacheWriterTest : public testing::Test
{
protected:
    [[nodiscard]] static QVariantList listOf(const QString &text)
    {
        return {QVariantMap{{QStringLiteral("messageId"), text}}};
    }
    [[nodiscard]] QVariantList inTheFile() const { return PropertyList::readFile(cache.path()).toList(); }

    const QTemporaryDir home;
    NotificationCache cache{home.path()};
    std::vector<bool> told;
    CacheWriter writer{cache, [this](bool isWritten) {
                           EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
                           EXPECT_FALSE(writer.isWriting());
                           told.push_back(isWritten);
                       }};
};

TEST_F(CacheWriterTest, WritesAShortListBeforeItReturns)
{
    writer.write(listOf(QStringLiteral("1")), CacheWriter::maxBytesAtOnce);
    EXPECT_FALSE(writer.isWriting());
    EXPECT_EQ(told, std::vector{true});
    EXPECT_EQ(inTheFile(), listOf(QStringLiteral("1")));
}

TEST_F(CacheWriterTest, LeavesTheEventLoopItsTurnsWhileItWritesALongList)
{
    const QVariantList list = listOf(QString(qsizetype{2} * 1024 * 1024, u'<'));
    int turns = 0;
    QTimer turn;
    turn.callOnTimeout([&] { ++turns; });
    turn.start(0);
    writer.write(list, longList);
    EXPECT_TRUE(writer.isWriting());
    EXPECT_TRUE(told.empty());
    ASSERT_TRUE(waitUntil([this] { return !told.empty(); }));
    EXPECT_GT(turns, 3);
    EXPECT_EQ(told, std::vector{true});
    EXPECT_EQ(inTheFile(), list);
}

TEST_F(CacheWriterTest, TellsWhenALongListCannotBeWritten)
{
    ASSERT_TRUE(QFile(home.filePath(QStringLiteral("Library"))).open(QIODevice::WriteOnly));
    writer.write(listOf(QStringLiteral("1")), longList);
    EXPECT_TRUE(waitUntil([this] { return told == std::vector{false}; }));
}

TEST_F(CacheWriterTest, TellsOfEachListOnceThoughSomebodyWaits)
{
    writer.write(listOf(QStringLiteral("1")), longList);
    writer.wait();
    EXPECT_EQ(told, std::vector{true});
    EXPECT_EQ(inTheFile(), listOf(QStringLiteral("1")));
    const QVariantList list = listOf(QString(qsizetype{2} * 1024 * 1024, u'<'));
    writer.write(list, longList);
    QCoreApplication::sendPostedEvents(); // That of the first list is among them.
    EXPECT_TRUE(writer.isWriting());
    ASSERT_TRUE(waitUntil([this] { return told.size() == 2; }));
    QCoreApplication::sendPostedEvents();
    writer.wait();
    EXPECT_EQ(told, (std::vector{true, true}));
    EXPECT_EQ(inTheFile(), list);
}

TEST_F(CacheWriterTest, WaitsAlsoForWhatIsBegunWhenItTells)
{
    bool isBegun = false;
    CacheWriter again(cache, [&](bool) {
        if (!std::exchange(isBegun, true)) {
            again.write(listOf(QStringLiteral("2")), longList);
        }
    });
    again.write(listOf(QStringLiteral("1")), longList);
    again.wait();
    EXPECT_FALSE(again.isWriting());
    EXPECT_EQ(inTheFile(), listOf(QStringLiteral("2")));
}

TEST_F(CacheWriterTest, HasWrittenWhatItHadBegunWhenItEnds)
{
    {
        CacheWriter brief(cache, [](bool) { FAIL() << "nobody is there to be told"; });
        brief.write(listOf(QStringLiteral("1")), longList);
    }
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(inTheFile(), listOf(QStringLiteral("1")));
}

} // namespace
