#include "shell/link/EventHandler.h"

#include "shell/ProcessState.h"
#include "tests/shell/link/EventBuilder.h"
#include "tests/support/ChildProcess.h"

#include <gtest/gtest.h>

namespace
{

/// Two running processes that may command the agent: this one and a child of it.
class EventHandler : public testing::Test
{
protected:
    EventHandler()
    {
        __menu = std::make_unique<KIVMenuObj>();
        __owpsn = {};
        EXPECT_TRUE(sleeper.start(QStringLiteral("sleep"), {QStringLiteral("60")}));
        first = {0, static_cast<UInt32>(::getpid())};
        second = {0, static_cast<UInt32>(sleeper.pid())};
    }
    ~EventHandler() override
    {
        __menu.reset();
        __owpsn = {};
    }

    static OSErr handle(EventBuilder &builder) { return __ae_handler(builder.event(), nullptr, nullptr); }

    static OSErr claim(ProcessSerialNumber psn)
    {
        EventBuilder builder;
        return handle(builder.command(kMenuEvtSetOwner).sender(psn));
    }

    /// A command whose effect can be seen: it allows "Disconnect the Session".
    static OSErr allowDisconnect(ProcessSerialNumber psn)
    {
        EventBuilder builder;
        return handle(builder.command(kMenuEvtSetOptions).sender(psn).count(1).actions({kMenuCmdDisconnect}));
    }

    static bool disconnectAllowed()
    {
        for (const QAction *item : __menu->menu()->actions()) {
            if (item->data().toUInt() == kMenuCmdDisconnect) {
                return item->isEnabled();
            }
        }
        return false;
    }

    ChildProcess sleeper;
    ProcessSerialNumber first{};
    ProcessSerialNumber second{};
};

using EventHandlerDeathTest = EventHandler;

} // namespace

TEST_F(EventHandler, FailsForANullEvent)
{
    EXPECT_EQ(__ae_handler(nullptr, nullptr, nullptr), -10000);
}

TEST_F(EventHandler, AnswersTheReadsErrorWhenTheCommandIsMissing)
{
    EventBuilder builder;
    EXPECT_EQ(handle(builder.sender(first)), -1701);
}

TEST_F(EventHandler, AnswersTheReadsErrorWhenTheSenderIsMissingEvenFromANewOwner)
{
    EventBuilder builder;
    EXPECT_EQ(handle(builder.command(kMenuEvtSetOwner)), -1701);
    EXPECT_EQ(__owpsn.lowLongOfPSN, 0U);
}

TEST_F(EventHandler, AnswersTheReadsErrorWhenAParameterHasAnotherType)
{
    EventBuilder builder;
    builder.put(kMenuParamCommand, typeUInt32, &kMenuEvtSetOwner, 4).sender(first);
    EXPECT_EQ(handle(builder), -1700);
    EXPECT_EQ(__owpsn.lowLongOfPSN, 0U);
}

TEST_F(EventHandler, IgnoresEveryCommandBeforeSomebodyOwnsTheAgent)
{
    EXPECT_EQ(allowDisconnect(first), 0);
    EXPECT_FALSE(disconnectAllowed());
    for (const std::uint32_t command : {kMenuEvtDoHint, kMenuEvtQuit, kMenuEvtAction}) {
        EventBuilder builder;
        EXPECT_EQ(handle(builder.command(command).sender(first)), 0);
    }
}

TEST_F(EventHandler, IgnoresNoProcessBeforeSomebodyOwnsTheAgent)
{
    EXPECT_EQ(allowDisconnect({0, 0}), 0);
    EXPECT_FALSE(disconnectAllowed());
}

TEST_F(EventHandler, TakesCommandsFromItsOwner)
{
    EXPECT_EQ(claim(first), 0);
    EXPECT_EQ(__owpsn.lowLongOfPSN, first.lowLongOfPSN);
    EXPECT_EQ(allowDisconnect(first), 0);
    EXPECT_TRUE(disconnectAllowed());
}

TEST_F(EventHandler, LetsASecondProcessTakeOverAndThenIgnoresTheFirst)
{
    claim(first);
    claim(second);
    EXPECT_EQ(__owpsn.lowLongOfPSN, second.lowLongOfPSN);
    EXPECT_EQ(allowDisconnect(first), 0);
    EXPECT_FALSE(disconnectAllowed());
    EXPECT_EQ(allowDisconnect(second), 0);
    EXPECT_TRUE(disconnectAllowed());
}

TEST_F(EventHandler, AcceptsAnUnknownCommandFromTheOwnerAndChangesNothing)
{
    claim(first);
    for (const std::uint32_t command : {std::uint32_t{0}, kMenuEvtAction, fourCharCode("zzzz")}) {
        EventBuilder builder;
        EXPECT_EQ(handle(builder.command(command).sender(first).flags(6).count(1).actions({kMenuCmdDisconnect})), 0);
    }
    EXPECT_FALSE(disconnectAllowed());
    EXPECT_EQ(__owpsn.lowLongOfPSN, first.lowLongOfPSN);
}

TEST_F(EventHandler, PassesACommandsFailureOn)
{
    claim(first);
    EventBuilder builder;
    EXPECT_EQ(handle(builder.command(kMenuEvtSetOptions).sender(first).count(1)), -10000);
    EventBuilder hint;
    const std::uint32_t length = 4;
    hint.put(kMenuParamHintSize, typeUInt32, &length, sizeof length);
    EXPECT_EQ(handle(hint.command(kMenuEvtDoHint).sender(first)), -10000);
}

TEST_F(EventHandlerDeathTest, EndsTheProcessAtOnceWithStatusZeroWhenTheOwnerSaysSo)
{
    claim(first);
    EventBuilder builder;
    builder.command(kMenuEvtQuit).sender(first);
    EXPECT_EXIT(handle(builder), testing::ExitedWithCode(0), "");
}
