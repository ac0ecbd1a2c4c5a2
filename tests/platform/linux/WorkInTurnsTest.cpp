#include "platform/linux/WorkInTurns.h"

#include "tests/support/WaitUntil.h"

#include <QElapsedTimer>
#include <QTimer>

#include <gtest/gtest.h>

#include <string>

namespace
{

const QString one = QStringLiteral("one");
const QString other = QStringLiteral("other");

/// Uses up a turn.
void takeLong()
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < WorkInTurns::kShareOfATurn.count() + 1) {
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

    std::string done;
    WorkInTurns work;
};

TEST_F(WorkInTurnsTest, IsDoneAtOnceWhenItIsLittle)
{
    work.carryOut(one, note('a'));
    EXPECT_EQ(done, "a");
    work.carryOut(other, note('b'));
    EXPECT_EQ(done, "ab");
}

TEST_F(WorkInTurnsTest, LetsTheLoopDoOtherThingsInBetween)
{
    QTimer::singleShot(1, Qt::PreciseTimer, &work, [this] { done += '!'; });
    for (const char what : {'a', 'b', 'c'}) {
        work.carryOut(one, noteAfterLong(what));
    }
    EXPECT_EQ(done, "a");
    ASSERT_TRUE(waitUntil([this] { return done.size() == 4; }));
    EXPECT_LT(done.find('!'), done.find('c'));
}

TEST_F(WorkInTurnsTest, KeepsTheOrderOfAClient)
{
    work.carryOut(one, noteAfterLong('a'));
    for (const char what : {'b', 'c', 'd'}) {
        work.carryOut(one, note(what));
    }
    ASSERT_TRUE(waitUntil([this] { return done.size() == 4; }));
    EXPECT_EQ(done, "abcd");
}

TEST_F(WorkInTurnsTest, DoesNotLetOneClientWaitForAllOfAnothers)
{
    work.carryOut(one, noteAfterLong('a'));
    for (int i = 0; i < 1000; ++i) {
        work.carryOut(one, note('.'));
    }
    work.carryOut(other, note('b'));
    work.carryOut(other, note('c'));
    ASSERT_TRUE(waitUntil([this] { return done.size() == 1003; }));
    EXPECT_EQ(done.substr(0, 5), "a.b.c");
}

TEST_F(WorkInTurnsTest, GoesOnInALoopThatWorkRunsItself)
{
    work.carryOut(one, noteAfterLong('a'));
    work.carryOut(one, [this] {
        work.carryOut(one, note('c'));
        EXPECT_TRUE(waitUntil([this] { return done == "abc"; }));
    });
    work.carryOut(one, note('b'));
    EXPECT_TRUE(waitUntil([this] { return done.size() == 3; }));
    work.carryOut(one, note('d'));
    EXPECT_TRUE(waitUntil([this] { return done == "abcd"; }));
}

TEST_F(WorkInTurnsTest, IsForgottenWithItsObject)
{
    {
        WorkInTurns ended;
        ended.carryOut(one, noteAfterLong('a'));
        ended.carryOut(one, note('b'));
    }
    QTimer::singleShot(0, &work, [this] { done += '!'; });
    EXPECT_TRUE(waitUntil([this] { return done == "a!"; }));
}

} // namespace
