#include "notify/queue/CacheImport.h"

#include "notify/queue/CacheWriter.h"
#include "notify/record/KivNotification.h"
#include "platform/data/PropertyList.h"
#include "tests/support/LogLines.h"
#include "tests/support/ProcessorTime.h"
#include "tests/support/WaitUntil.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using namespace std::chrono_literals;

using Ids = std::vector<std::string>;

/// So many messages of that many characters, whose heights are known: the ids are numbers from 1 on.
QVariantList messages(int count, qsizetype characters)
{
    QVariantList list;
    for (int id = 1; id <= count; ++id) {
        KivNotification record;
        record.setMessageId(QString::number(id));
        record.setContentHeight(60);
        record.setMessageText(QString(characters, u'x'));
        list.append(record.exportToDictionary());
    }
    return list;
}

class CacheImportTest : public testing::Test
{
protected:
    void putIntoFile(const QVariantList &list) { ASSERT_TRUE(NotificationCache(home.path()).write(list)); }
    void putLongFile() { putIntoFile(messages(200, CacheWriter::maxBytesAtOnce / 100)); }
    [[nodiscard]] static Ids idsTo(int last)
    {
        Ids ids;
        for (int id = 1; id <= last; ++id) {
            ids.push_back(std::to_string(id));
        }
        return ids;
    }

    static void beforeTheNextTurn(const std::function<void()> &call)
    {
        QMetaObject::invokeMethod(QCoreApplication::instance(), call, Qt::QueuedConnection);
    }

    CacheImport &importer(std::chrono::milliseconds share = CacheImport::maxShareOfATurn)
    {
        const auto take = [this](const std::shared_ptr<KivNotification> &record) {
            EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
            EXPECT_TRUE(import->isUnderWay());
            taken.push_back(record->messageId().toStdString());
            if (onTaken) {
                onTaken();
            }
        };
        const auto done = [this] {
            EXPECT_FALSE(import->isUnderWay());
            ++dones;
        };
        import.emplace(cache, CacheImport::Receiver{.take = take, .done = done}, share);
        return *import;
    }

    const QTemporaryDir home;
    NotificationCache cache{home.path()};
    std::optional<CacheImport> import;
    std::function<void()> onTaken;
    Ids taken;
    int dones = 0;
};

TEST_F(CacheImportTest, ReadsAShortFileBeforeItReturns)
{
    putIntoFile(messages(3, 10));
    importer().begin();
    EXPECT_EQ(taken, idsTo(3));
    EXPECT_EQ(dones, 1);
}

TEST_F(CacheImportTest, IsOverAtOnceWithoutAFile)
{
    importer().begin();
    EXPECT_EQ(taken, Ids());
    EXPECT_EQ(dones, 1);
}

TEST_F(CacheImportTest, LeavesALongFileToAnotherThread)
{
    putIntoFile(messages(1000, 1024));
    const auto before = processorTimeOfThisThread();
    importer().begin();
    const auto begun = processorTimeOfThisThread() - before;
    EXPECT_EQ(taken, Ids());
    // The same work done here, so that it does not matter how slow the machine or the build is.
    const auto beforeReading = processorTimeOfThisThread();
    ASSERT_EQ(PropertyList::readFile(cache.path()).toList().size(), 1000);
    EXPECT_LT(2 * begun, processorTimeOfThisThread() - beforeReading);
    ASSERT_TRUE(waitUntil([this] { return dones == 1; }));
    EXPECT_EQ(taken, idsTo(1000));
}

TEST_F(CacheImportTest, LeavesTheEventLoopATurnBetweenRecords)
{
    putLongFile();
    QTimer turn;
    int turns = 0;
    turn.callOnTimeout([&] { ++turns; });
    turn.start(0);
    std::vector<int> turnsBefore;
    onTaken = [&] { turnsBefore.push_back(turns); };
    importer(0ms).begin(); // A share that is used up with each record.
    ASSERT_TRUE(waitUntil([this] { return dones == 1; }));
    EXPECT_EQ(taken, idsTo(200));
    EXPECT_EQ(std::ranges::adjacent_find(turnsBefore), turnsBefore.end()) << "two in one turn";
}

TEST_F(CacheImportTest, TakesNoMoreThanAFifthOfWhatAMenuMayWait)
{
    EXPECT_LE(5 * CacheImport::maxShareOfATurn, 50ms) << "a long record, and what else the turn is for, come on top";
}

TEST_F(CacheImportTest, HandsOverTheRestWhenSomebodyCannotWait)
{
    putLongFile();
    importer().begin();
    import->finish();
    EXPECT_EQ(taken, idsTo(200));
    EXPECT_EQ(dones, 1);
    QCoreApplication::sendPostedEvents(); // The thread's is among them.
    import->finish();
    EXPECT_EQ(taken.size(), 200U);
    EXPECT_EQ(dones, 1);

    taken.clear();
    onTaken = [this] {
        if (taken.size() == 7) {
            beforeTheNextTurn([this] { import->finish(); });
        }
    };
    importer(0ms).begin();
    ASSERT_TRUE(waitUntil([this] { return dones == 2; }));
    EXPECT_EQ(taken, idsTo(200));
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(dones, 2);
}

TEST_F(CacheImportTest, GoesOnBehindARecordThatNobodyWants)
{
    QVariantList list = messages(200, CacheWriter::maxBytesAtOnce / 100);
    list.insert(1, QStringLiteral("no record"));
    list.insert(2, QVariantMap{{QStringLiteral("newInTheNextVersion"), true}});
    putIntoFile(list);
    onTaken = [this] {
        if (taken.back() == "2") {
            throw std::out_of_range("no version");
        }
    };
    importer().begin();
    ASSERT_TRUE(waitUntil([this] { return dones == 1; }));
    EXPECT_EQ(taken, idsTo(200));
}

TEST_F(CacheImportTest, TellsNobodyWhenItEndsInBetween)
{
    putLongFile();
    importer(0ms).begin();
    import.reset();
    QCoreApplication::sendPostedEvents();
    EXPECT_TRUE(taken.empty());
    onTaken = [this] { beforeTheNextTurn([this] { import.reset(); }); };
    importer(0ms).begin();
    ASSERT_TRUE(waitUntil([this] { return !import; }));
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(taken, idsTo(1));
    EXPECT_EQ(dones, 0);
}

TEST_F(CacheImportTest, HasItsThreadAtItsEndOnceItIsAbandoned)
{
    const QFileInfo file(cache.path());
    ASSERT_TRUE(QDir().mkpath(file.path()));
    QFile unreadable(file.filePath());
    ASSERT_TRUE(unreadable.open(QIODevice::WriteOnly));
    unreadable.write("<plist><array>" + QByteArray("<string>no record</string>").repeated(100'000)); // It never ends.
    unreadable.close();
    LogLines log;
    importer().begin();
    EXPECT_TRUE(import->isUnderWay());
    import->abandon();
    EXPECT_THAT(log.take(), testing::Contains(testing::HasSubstr("holds no list"))) << "the thread's last word";
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(dones, 0);
}

} // namespace
