#include "notify/queue/NotificationQueue.h"

#include "notify/record/KivNotification.h"
#include "tests/support/LogLines.h"
#include "tests/support/ProcessorTime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace
{

using Record = std::shared_ptr<KivNotification>;
using Ids = std::vector<std::string>;

Record record(const char *id, std::int32_t priority)
{
    auto result = std::make_shared<KivNotification>();
    result->setMessageId(QString::fromLatin1(id));
    result->setMessagePriority(priority);
    return result;
}

Record hint()
{
    return record("", kPriorityInstant);
}

Ids idsOf(const NotificationQueue &queue)
{
    Ids ids;
    for (const Record &queued : queue.records()) {
        ids.push_back(queued->messageId().toStdString());
    }
    return ids;
}

NotificationQueue queueWith(const std::vector<Record> &records)
{
    NotificationQueue queue;
    for (const Record &each : records) {
        queue.add(each);
    }
    return queue;
}

} // namespace

TEST(NotificationQueue, PutsANewcomerBehindItsOwnPriorityAndBeforeTheLowerOnes)
{
    NotificationQueue queue = queueWith({record("a", 2), record("b", 1), record("c", 1), record("d", 0)});
    queue.add(record("new", 1));
    EXPECT_EQ(idsOf(queue), (Ids{"a", "b", "c", "new", "d"}));
    queue.add(record("low", 0));
    EXPECT_EQ(idsOf(queue), (Ids{"a", "b", "c", "new", "d", "low"}));
    queue.add(record("instant", 3));
    EXPECT_EQ(idsOf(queue), (Ids{"instant", "a", "b", "c", "new", "d", "low"}));
}

TEST(NotificationQueue, ComparesPrioritiesWithTheirSign)
{
    EXPECT_EQ(idsOf(queueWith({record("a", -1), record("b", 0), record("c", 7)})), (Ids{"c", "b", "a"}));
}

TEST(NotificationQueue, IgnoresARecordWhoseIdIsQueuedWhateverElseItHolds)
{
    const Record first = record("17", 1);
    first->setMaxVersion(QStringLiteral("1.0"));
    NotificationQueue queue = queueWith({record("16", 1), first});
    const Record again = record("17", 2);
    queue.add(again);
    EXPECT_EQ(idsOf(queue), (Ids{"16", "17"}));
    EXPECT_EQ(queue.records().at(1), first);
    EXPECT_EQ(first->messagePriority(), 1);
    EXPECT_TRUE(queue.contains(*again));
}

TEST(NotificationQueue, KeepsEveryInstantMessageInItsTurn)
{
    const Record first = hint();
    const Record second = hint();
    const NotificationQueue queue = queueWith({record("1", 2), first, second});
    ASSERT_EQ(queue.records().size(), 3U);
    EXPECT_EQ(queue.records().at(0), first);
    EXPECT_EQ(queue.records().at(1), second);
}

TEST(NotificationQueue, HoldsNoRecordTwice)
{
    const Record instant = hint();
    const Record plain = record("1", 1);
    EXPECT_EQ(queueWith({instant, plain, instant, plain}).records().size(), 2U);
}

TEST(NotificationQueue, RemovesByTheId)
{
    NotificationQueue queue = queueWith({record("1", 1), record("2", 1), record("3", 1)});
    queue.remove(*record("2", 0));
    EXPECT_EQ(idsOf(queue), (Ids{"1", "3"}));
    queue.remove(*record("2", 0));
    EXPECT_EQ(idsOf(queue), (Ids{"1", "3"}));
}

TEST(NotificationQueue, RemovesAnInstantMessageAndNoOther)
{
    const Record first = hint();
    const Record second = hint();
    NotificationQueue queue = queueWith({first, second, record("", 1)});
    queue.remove(*second);
    ASSERT_EQ(queue.records().size(), 2U);
    EXPECT_EQ(queue.records().at(0), first);
    queue.remove(*queue.records().at(1));
    ASSERT_EQ(queue.records().size(), 1U);
    EXPECT_EQ(queue.records().at(0), first) << "a message without id has taken an instant one with it";
    queue.remove(*queue.records().at(0)); // Which nobody else keeps alive.
    EXPECT_TRUE(queue.records().empty());
}

TEST(NotificationQueue, DropsTheOldestOfTheLeastUrgentWhenItIsFull)
{
    NotificationQueue queue = queueWith({record("a", 2), record("b", 1), record("c", 0), record("d", 0)});
    queue.dropBeyond({.records = 4, .bytes = 1'000'000});
    EXPECT_EQ(queue.records().size(), 4U);
    queue.dropBeyond({.records = 3, .bytes = 1'000'000});
    EXPECT_EQ(idsOf(queue), (Ids{"a", "b", "d"}));
    queue.dropBeyond({.records = 1, .bytes = 1'000'000});
    EXPECT_EQ(idsOf(queue), Ids{"a"});
}

TEST(NotificationQueue, NeitherCountsNorDropsHints)
{
    const Record large = hint();
    large->setContentHeight(1); // Not to be measured.
    large->setMessageText(QString(10'000, u'&'));
    NotificationQueue queue = queueWith({record("a", 1), hint(), large, record("b", 1)});
    queue.dropBeyond({.records = 2, .bytes = 10'000});
    EXPECT_EQ(idsOf(queue), (Ids{"", "", "a", "b"}));
    queue.dropBeyond({.records = 1, .bytes = 10'000});
    EXPECT_EQ(idsOf(queue), (Ids{"", "", "b"}));
    queue.dropBeyond({.records = 1, .bytes = 10});
    EXPECT_EQ(idsOf(queue), (Ids{"", ""}));
    EXPECT_EQ(queue.bytes(NotificationQueue::Hints::LeaveOut), 0);
    EXPECT_GT(queue.bytes(NotificationQueue::Hints::Include), 50'000) << "five bytes each in XML";
    queue.remove(*large);
    EXPECT_LT(queue.bytes(NotificationQueue::Hints::Include), 10'000);
}

TEST(NotificationQueue, DropsNoHintForAMessageThatHasBecomeAsUrgent)
{
    const Record raised = record("a", 1);
    NotificationQueue queue = queueWith({hint(), raised});
    raised->setMessagePriority(kPriorityInstant);
    queue.dropBeyond({.records = 0, .bytes = 10'000});
    EXPECT_EQ(idsOf(queue), Ids{""});
}

TEST(NotificationQueue, ExportsItsRecordsInOrderWithTheHintsOrWithout)
{
    const Record except = record("b", 1);
    const NotificationQueue queue = queueWith({record("a", 2), hint(), except, record("c", 0)});
    const auto ids = [](const QVariantList &list) {
        Ids result;
        for (const QVariant &entry : list) {
            result.push_back(entry.toMap().value(QStringLiteral("messageId")).toString().toStdString());
        }
        return result;
    };
    EXPECT_EQ(ids(queue.exported(NotificationQueue::Hints::Include, nullptr)), (Ids{"", "a", "b", "c"}));
    EXPECT_EQ(ids(queue.exported(NotificationQueue::Hints::LeaveOut, except.get())), (Ids{"a", "c"}));
}

TEST(NotificationQueue, SaysWhatItDropsAndWhatItHasAlready)
{
    NotificationQueue queue = queueWith({record("a", 1), record("b", 0), record("c", 0)});
    LogLines log;
    queue.add(record("a", 2));
    queue.dropBeyond({.records = 1, .bytes = 1'000'000});
    EXPECT_THAT(log.take(), testing::ElementsAre("kiv.queue: message \"a\" waits already",
                                                 "kiv.queue: message \"b\" is dropped: the queue is full",
                                                 "kiv.queue: message \"c\" is dropped: the queue is full"));
}

TEST(NotificationQueue, DropsRecordsUntilTheOthersHaveRoomInAFile)
{
    const Record large = record("large", 1);
    large->setContentHeight(1);                   // Not to be measured.
    large->setMessageText(QString(10'000, u'&')); // Five bytes each in XML.
    NotificationQueue queue = queueWith({record("a", 0), record("b", 0), large});
    const qsizetype bytes = queue.bytes(NotificationQueue::Hints::LeaveOut);
    queue.dropBeyond({.records = 10, .bytes = bytes});
    EXPECT_EQ(queue.records().size(), 3U);
    queue.dropBeyond({.records = 10, .bytes = bytes - 1});
    EXPECT_EQ(idsOf(queue), (Ids{"large", "b"}));
    queue.remove(*record("b", 0));

    queue.add(large);
    queue.remove(*large);
    queue.add(record("c", 0));
    queue.dropBeyond({.records = 10, .bytes = 50'000});
    EXPECT_EQ(idsOf(queue), Ids{"c"}) << "what has been removed counts no more";
}

TEST(NotificationQueue, DropsNothingForAMessageThatHasNoRoomAlone)
{
    const auto waiting = [] {
        NotificationQueue queue;
        for (int id = 1; id <= 20; ++id) {
            queue.add(record(std::to_string(id).c_str(), id % 3));
        }
        return queue;
    };
    constexpr NotificationQueue::Load limit{.records = 1000, .bytes = 1'000'000};
    const auto large = [](const char *id, std::int32_t priority) {
        const Record one = record(id, priority);
        one->setContentType(QString(limit.bytes, u'.'));
        return one;
    };
    for (const std::int32_t priority : {0, 1, 2}) {
        NotificationQueue queue = waiting();
        queue.add(large("first", priority));
        queue.add(large("second", 2));
        queue.dropBeyond(limit);
        EXPECT_EQ(idsOf(queue), idsOf(waiting())) << priority;
    }
}

TEST(NotificationQueue, FindsAMessageAmongAThousandAsFastAsAmongTen)
{
    const auto timeOfLookUps = [](int queued) {
        NotificationQueue queue;
        for (int id = 0; id < queued; ++id) {
            queue.add(record(std::to_string(id).c_str(), 1));
        }
        const Record unknown = record("unknown", 1);
        const auto before = processorTimeOfThisThread();
        for (int i = 0; i < 10'000; ++i) {
            EXPECT_FALSE(queue.contains(*unknown));
        }
        return processorTimeOfThisThread() - before;
    };
    EXPECT_LT(timeOfLookUps(1000), 10 * timeOfLookUps(10)) << "one by one it would be a hundred times";
}

TEST(NotificationQueue, TellsMessagesWithoutIdFromThoseWithAnEmptyOne)
{
    NotificationQueue queue;
    const Record withoutId = record("", 1);
    withoutId->setMessageId(QString());
    queue.add(withoutId);
    EXPECT_FALSE(queue.contains(*record("", 1)));
    queue.add(record("", 1));
    EXPECT_TRUE(queue.contains(*record("", 1)));
    EXPECT_FALSE(queue.contains(*hint()));
    EXPECT_TRUE(queue.contains(*withoutId));
    queue.remove(*withoutId);
    EXPECT_FALSE(queue.contains(*withoutId));
    EXPECT_TRUE(queue.contains(*record("", 1)));
}
