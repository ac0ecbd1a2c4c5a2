#include "platform/linux/bus/WorkInTurns.h"

#include "tests/support/LogLines.h"
#include "tests/support/WaitUntil.h"

#include <QElapsedTimer>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>

namespace
{

const QString one = QStringLiteral("one");
const QString other = QStringLiteral("other");

/// Uses up a turn.
void takeLong()
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < WorkInTurns::defaultMaxShareOfATurn.count() + 1) {
    }
}

class WorkInTurnsTest : public testing::Test
{
protected:
    WorkInTurns::Work note(char what)
    {
        return [this, what] { done += what; };
    }
    WorkInTurns::Work noteAfterLong(char what)
    {
        return [this, what] {
            takeLong();
            done += what;
        };
    }

    void carryOut(const QString &client, WorkInTurns::Work piece)
    {
        EXPECT_TRUE(work.carryOut(client, std::move(piece)));
    }

    std::string done;
    WorkInTurns work;
};

TEST_F(WorkInTurnsTest, IsDoneAtOnceWhenItIsLittle)
{
    // In a long turn, as who knows when the machine goes on with this after the first.
    WorkInTurns patient(std::chrono::hours(1));
    EXPECT_TRUE(patient.carryOut(one, note('a')));
    EXPECT_EQ(done, "a");
    EXPECT_TRUE(patient.carryOut(other, note('b')));
    EXPECT_EQ(done, "ab");
}

TEST_F(WorkInTurnsTest, LetsTheLoopDoOtherThingsInBetween)
{
    QTimer::singleShot(1, Qt::PreciseTimer, &work, [this] { done += '!'; });
    for (const char what : {'a', 'b', 'c'}) {
        carryOut(one, noteAfterLong(what));
    }
    EXPECT_EQ(done, "a");
    ASSERT_TRUE(waitUntil([this] { return done.size() == 4; }));
    EXPECT_LT(done.find('!'), done.find('c'));
}

TEST_F(WorkInTurnsTest, KeepsTheOrderOfAClient)
{
    carryOut(one, noteAfterLong('a'));
    for (const char what : {'b', 'c', 'd'}) {
        carryOut(one, note(what));
    }
    ASSERT_TRUE(waitUntil([this] { return done.size() == 4; }));
    EXPECT_EQ(done, "abcd");
}

TEST_F(WorkInTurnsTest, KeepsTheOrderInWhichItCameWhoeverItIsFor)
{
    carryOut(one, noteAfterLong('a'));
    for (std::size_t i = 0; i < WorkInTurns::maxInOrder - 1; ++i) {
        carryOut(one, note('.'));
    }
    carryOut(other, note('b'));
    carryOut(one, note('c'));
    carryOut(other, note('d'));
    ASSERT_TRUE(waitUntil([this] { return done.size() == 1 + WorkInTurns::maxInOrder + 2; }));
    EXPECT_EQ(done, 'a' + std::string(WorkInTurns::maxInOrder - 1, '.') + "bcd");
}

TEST_F(WorkInTurnsTest, ComesBehindThatOfOthersForAClientForWhomTooMuchWaits)
{
    carryOut(one, noteAfterLong('a'));
    for (std::size_t i = 0; i <= WorkInTurns::maxInOrder; ++i) {
        carryOut(one, note('.'));
    }
    carryOut(other, note('b'));
    carryOut(QStringLiteral("third"), note('c'));
    carryOut(other, note('d'));
    ASSERT_TRUE(waitUntil([this] { return done.size() == 1 + WorkInTurns::maxInOrder + 1 + 3; }));
    EXPECT_EQ(done, "abcd" + std::string(WorkInTurns::maxInOrder + 1, '.'));
}

TEST_F(WorkInTurnsTest, SaysOnceThatTooMuchWaitsForAClient)
{
    LogLines log;
    carryOut(one, noteAfterLong('a'));
    for (std::size_t i = 0; i < WorkInTurns::maxInOrder; ++i) {
        carryOut(one, note('.'));
    }
    EXPECT_THAT(log.take(), testing::IsEmpty());
    carryOut(one, note('.'));
    EXPECT_THAT(log.take(),
                testing::ElementsAre("kiv.link: more than 1000 events of \"one\" wait: the others come first"));
    carryOut(one, note('.'));
    EXPECT_THAT(log.take(), testing::IsEmpty());
}

TEST_F(WorkInTurnsTest, TakesItsPlaceAgainOnceLessOfItWaits)
{
    carryOut(one, noteAfterLong('a'));
    // When this is carried out, just as much waits as may be in order.
    carryOut(one, [this] { carryOut(other, note('b')); });
    for (std::size_t i = 0; i < WorkInTurns::maxInOrder; ++i) {
        carryOut(one, note('.'));
    }
    ASSERT_TRUE(waitUntil([this] { return done.size() == 1 + WorkInTurns::maxInOrder + 1; }));
    EXPECT_EQ(done, 'a' + std::string(WorkInTurns::maxInOrder, '.') + 'b');
}

TEST_F(WorkInTurnsTest, IsRefusedOnlyToWhoHasTheMostThatMayWait)
{
    WorkInTurns small(WorkInTurns::defaultMaxShareOfATurn, 2);
    for (const char what : {'a', 'b', 'c'}) {
        EXPECT_TRUE(small.carryOut(one, noteAfterLong(what)));
    }
    EXPECT_FALSE(small.carryOut(one, note('!')));
    EXPECT_TRUE(small.carryOut(other, note('d')));
    ASSERT_TRUE(waitUntil([this] { return done.size() == 4; }));
    EXPECT_EQ(done, "abcd");
    EXPECT_TRUE(small.carryOut(one, note('e'))) << "there is room again";
    EXPECT_TRUE(waitUntil([this] { return done == "abcde"; }));
}

TEST_F(WorkInTurnsTest, GoesOnInALoopThatWorkRunsItself)
{
    carryOut(one, noteAfterLong('a'));
    carryOut(one, [this] {
        carryOut(one, note('c'));
        EXPECT_TRUE(waitUntil([this] { return done == "abc"; }));
    });
    carryOut(one, note('b'));
    EXPECT_TRUE(waitUntil([this] { return done.size() == 3; }));
    carryOut(one, note('d'));
    EXPECT_TRUE(waitUntil([this] { return done == "abcd"; }));
}

TEST_F(WorkInTurnsTest, IsForgottenWithItsObject)
{
    {
        WorkInTurns ended;
        EXPECT_TRUE(ended.carryOut(one, noteAfterLong('a')));
        EXPECT_TRUE(ended.carryOut(one, note('b')));
    }
    QTimer::singleShot(0, &work, [this] { done += '!'; });
    EXPECT_TRUE(waitUntil([this] { return done == "a!"; }));
}

} // namespace
