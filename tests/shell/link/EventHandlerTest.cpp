#include "shell/link/EventHandler.h"

#include "shell/ProcessState.h"
#include "tests/shell/link/EventBuilder.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/LogLines.h"

#include <QPointer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

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

    /// A hint without its text: its failure tells that somebody has looked for one.
    static OSErr hintWithoutText(ProcessSerialNumber psn)
    {
        const std::uint32_t length = 4;
        EventBuilder builder;
        builder.put(kMenuParamHintSize, typeUInt32, &length, sizeof length);
        return handle(builder.command(kMenuEvtDoHint).sender(psn));
    }

    /// Whether the process goes on. Looked at in another one: it would end with status 0, as if all had been well.
    static void expectNoEnd(ProcessSerialNumber psn)
    {
        constexpr int goesOn = 42;
        const auto quit = [psn] {
            EventBuilder builder;
            return handle(builder.command(kMenuEvtQuit).sender(psn)) == noErr ? goesOn : 1;
        };
        EXPECT_EXIT(std::_Exit(quit()), testing::ExitedWithCode(goesOn), "");
    }

    static QAction *disconnectItem()
    {
        const QList<QAction *> items = __menu->menu()->actions();
        const auto found = std::ranges::find_if(
            items, [](const QAction *item) { return item->data().toUInt() == kMenuCmdDisconnect; });
        return found == items.end() ? nullptr : *found;
    }

    static bool disconnectAllowed() { return disconnectItem() && disconnectItem()->isEnabled(); }

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
    EXPECT_EQ(hintWithoutText(first), 0);
    expectNoEnd(first);
    EventBuilder builder;
    EXPECT_EQ(handle(builder.command(kMenuEvtAction).sender(first)), 0);
}

TEST_F(EventHandler, IgnoresNoProcessBeforeSomebodyOwnsTheAgent)
{
    EXPECT_EQ(allowDisconnect({0, 0}), 0);
    EXPECT_FALSE(disconnectAllowed());
}

TEST_F(EventHandler, IgnoresEveryCommandOfAStranger)
{
    claim(first);
    EXPECT_EQ(allowDisconnect(second), 0);
    EXPECT_FALSE(disconnectAllowed());
    EXPECT_EQ(hintWithoutText(second), 0);
    expectNoEnd(second);
    EXPECT_EQ(__owpsn.lowLongOfPSN, first.lowLongOfPSN);
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
    EXPECT_EQ(hintWithoutText(first), -10000);
}

TEST_F(EventHandler, LetsNothingThatIsThrownReachTheSystemAndAnswersThatItFailed)
{
    claim(first);
    LogLines log;
    // What is thrown on its way through Qt leaves a reference behind there: kept, it is no leak.
    static const auto *const kept = new QPointer<QAction>(disconnectItem());
    ASSERT_FALSE(kept->isNull());
    QObject::connect(disconnectItem(), &QAction::changed, __menu.get(),
                     [] { throw std::runtime_error("no such item"); });
    EXPECT_EQ(allowDisconnect(first), -10000);
    EXPECT_THAT(log.takeWarnings(), testing::ElementsAre(testing::HasSubstr("no such item")));
}

TEST_F(EventHandlerDeathTest, EndsTheProcessAtOnceWithStatusZeroWhenTheOwnerSaysSo)
{
    claim(first);
    EventBuilder builder;
    builder.command(kMenuEvtQuit).sender(first);
    EXPECT_EXIT(handle(builder), testing::ExitedWithCode(0), "");
}
