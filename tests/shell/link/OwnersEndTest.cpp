#include "menu/MenuCommands.h"
#include "platform/processes/ProcessWatch.h"
#include "shell/MenuProcedure.h"
#include "shell/ProcessState.h"
#include "shell/link/EventHandler.h"
#include "tests/shell/link/EventBuilder.h"
#include "tests/shell/link/FakeAppleEventManager.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
bool ownerHasEnded = false;
}

std::function<bool()> watchProcess(pid_t)
{
    return [] { return ownerHasEnded; };
}

namespace
{

/// A number that no process has, for it had one that has ended.
pid_t deadProcess()
{
    const pid_t child = ::fork();
    if (child == 0) {
        std::_Exit(EXIT_SUCCESS);
    }
    ::waitpid(child, nullptr, 0);
    return child;
}

/// Events in the name of an owner that has ended, with the sender that the system tells.
class OwnersEnd : public testing::Test
{
protected:
    OwnersEnd()
    {
        FakeAppleEventManager::reset();
        ownerHasEnded = false;
        __owpsn = {};
    }
    ~OwnersEnd() override
    {
        FakeAppleEventManager::reset();
        __owpsn = {};
    }

    static OSErr send(std::uint32_t command, pid_t owner)
    {
        EventBuilder builder;
        return __ae_handler(builder.command(command).sender({0, static_cast<UInt32>(owner)}).event(), nullptr, nullptr);
    }

    /// Whether it is still owned once a hint, which shows nothing, has come in its owner's name.
    static bool isOwnedAfterAHintOf(pid_t owner, pid_t sender)
    {
        EXPECT_EQ(send(kMenuEvtSetOwner, owner), noErr);
        ownerHasEnded = true;
        FakeAppleEventManager::sender = sender;
        EXPECT_EQ(send(kMenuEvtDoHint, owner), noErr);
        return __owpsn.lowLongOfPSN == static_cast<UInt32>(owner);
    }
};

} // namespace

TEST_F(OwnersEnd, LeavesItsOwnLastWordsToBeHeard)
{
    const pid_t owner = deadProcess();
    EXPECT_TRUE(isOwnedAfterAHintOf(owner, owner));
}

TEST_F(OwnersEnd, VacatesItsPlaceWhenAnotherSpeaksInItsName)
{
    EXPECT_FALSE(isOwnedAfterAHintOf(deadProcess(), ::getpid()));
}

TEST_F(OwnersEnd, VacatesItsPlaceAlsoWhereProcessesCannotBeWatched)
{
    const pid_t owner = ::fork();
    if (owner == 0) {
        ::pause();
    }
    EXPECT_EQ(send(kMenuEvtSetOwner, owner), noErr);
    ::kill(owner, SIGKILL);
    ::waitpid(owner, nullptr, 0);
    ownerHasEnded = false; // It is what watches that does not know.
    FakeAppleEventManager::sender = ::getpid();
    EXPECT_EQ(send(kMenuEvtDoHint, owner), noErr);
    EXPECT_EQ(__owpsn.lowLongOfPSN, 0U);
}

TEST_F(OwnersEnd, VacatesItsPlaceWhenAnotherHasItsNumberByNow)
{
    EXPECT_FALSE(isOwnedAfterAHintOf(::getpid(), ::getpid()));
}

TEST_F(OwnersEnd, VacatesItsPlaceWhenNobodyKnowsWhoSpeaksThoughTheOwnerWasKnown)
{
    const pid_t owner = deadProcess();
    FakeAppleEventManager::sender = owner;
    EXPECT_EQ(send(kMenuEvtSetOwner, owner), noErr);
    ownerHasEnded = true;
    FakeAppleEventManager::sender.reset();
    EXPECT_EQ(send(kMenuEvtDoHint, owner), noErr);
    EXPECT_EQ(__owpsn.lowLongOfPSN, 0U);
}

TEST_F(OwnersEnd, LeavesTheWordsOfAProgramToBeHeardThatWasGoneBeforeItWasKnown)
{
    const pid_t owner = deadProcess();
    EXPECT_EQ(send(kMenuEvtSetOwner, owner), noErr);
    ownerHasEnded = true;
    EXPECT_EQ(send(kMenuEvtDoHint, owner), noErr);
    EXPECT_EQ(__owpsn.lowLongOfPSN, static_cast<UInt32>(owner));
}

TEST_F(OwnersEnd, SendsNoChoiceToAnotherThatHasItsNumberByNow)
{
    EXPECT_EQ(send(kMenuEvtSetOwner, ::getpid()), noErr);
    ownerHasEnded = true;
    __menu_proc(nullptr, kMenuCmdMinimize);
    EXPECT_EQ(__owpsn.lowLongOfPSN, 0U);
}

TEST_F(OwnersEnd, IsNotTheEndOfAnOwnerThatLives)
{
    EXPECT_EQ(send(kMenuEvtSetOwner, ::getpid()), noErr);
    FakeAppleEventManager::sender = ::getpid();
    EXPECT_EQ(send(kMenuEvtDoHint, ::getpid()), noErr);
    EXPECT_EQ(__owpsn.lowLongOfPSN, static_cast<UInt32>(::getpid()));
}
