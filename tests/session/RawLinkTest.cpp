#include "tests/session/support/DesktopWithAgent.h"
#include "tests/session/support/MessageCache.h"
#include "tests/session/support/RawCommand.h"
#include "tests/session/support/Service.h"
#include "tests/support/WaitUntil.h"

#include <QDBusConnectionInterface>
#include <QFile>

#include <gtest/gtest.h>

#include <csignal>
#include <unistd.h>

namespace
{

using RawCommand::agentName;
using RawCommand::command;
using RawCommand::event;
using RawCommand::flags;
using RawCommand::sender;

/// This process speaks to the agent in the wire's own terms, as a service that nobody of ours wrote would.
class RawLink : public DesktopWithAgent
{
protected:
    void SetUp() override
    {
        ASSERT_NO_FATAL_FAILURE(DesktopWithAgent::SetUp());
        ASSERT_TRUE(agent->startAndDock());
        ASSERT_TRUE(waitUntil([this] { return agent->isLinked(); }));
        peer.emplace(desktop.bus());
    }

    static RawParameter hintSize(const QByteArray &text)
    {
        return {QStringLiteral("mphs"), QStringLiteral("magn"), bytesOf(static_cast<std::uint32_t>(text.size()))};
    }
    static RawParameter hintText(const QByteArray &text)
    {
        return {QStringLiteral("mpht"), QStringLiteral("ptxt"), text};
    }
    static RawParameter count(std::uint32_t value)
    {
        return {QStringLiteral("mpan"), QStringLiteral("magn"), bytesOf(value)};
    }
    static RawParameter actions(const QByteArray &bytes)
    {
        return {QStringLiteral("mpac"), QStringLiteral("uibu"), bytes};
    }

    /// Sends an event and returns the handler's status.
    int send(const QList<RawParameter> &parameters) { return RawCommand::send(*peer, agent->pid(), parameters); }

    int claim(qint64 pid) { return send({command("mesp"), sender(pid)}); }

    /// What a refused command would have done: an answered event later, the item is still there.
    bool itemStays()
    {
        send({command("zzzz"), sender(::getpid())});
        return agent->dockedItem().has_value();
    }
    bool itemGoes()
    {
        return waitUntil([this] { return !agent->dockedItem(); });
    }

    const qint64 self = ::getpid();
    std::optional<BusPeer> peer;
};

} // namespace

TEST_F(RawLink, IgnoresEverythingBeforeItIsClaimedAndAnswersNoError)
{
    EXPECT_EQ(send({command("meso"), sender(self), flags(0)}), 0);
    EXPECT_EQ(send({command("meqi"), sender(self)}), 0);
    EXPECT_EQ(send({command("medh"), sender(self)}), 0);
    EXPECT_TRUE(itemStays());
    EXPECT_TRUE(agent->process().isRunning());
}

TEST_F(RawLink, ObeysWhoeverHasClaimedIt)
{
    EXPECT_EQ(claim(self), 0);
    EXPECT_EQ(send({command("meso"), sender(self), flags(0)}), 0);
    EXPECT_TRUE(itemGoes());
}

TEST_F(RawLink, ObeysTheLastOneThatClaimedIt)
{
    Service service(desktop);
    ASSERT_TRUE(service.attach(*agent));
    EXPECT_EQ(claim(self), 0);

    service.send("flags 0");
    ASSERT_TRUE(waitUntil([&] { return service.process().isRunning(); }));
    EXPECT_TRUE(itemStays());
    EXPECT_EQ(send({command("meso"), sender(self), flags(0)}), 0);
    EXPECT_TRUE(itemGoes());
}

TEST_F(RawLink, HandlesAHundredCommandsOfItsOwnerBeforeAnotherProcessTakesOver)
{
    EXPECT_EQ(claim(self), 0);
    ::kill(static_cast<pid_t>(agent->pid()), SIGSTOP); // So that all of it waits at once.
    std::vector<std::string> waiting;
    for (int i = 0; i < 100; ++i) {
        const QByteArray text = QByteArray::number(i);
        ASSERT_TRUE(peer->connection().send(
            event(agent->pid(), {command("medh"), sender(self), hintSize(text), hintText(text)})));
        if (i > 0) { // The first is shown.
            waiting.push_back(text.toStdString());
        }
    }
    static_cast<void>(peer->connection().interface()->isServiceRegistered(agentName(agent->pid()))); // They are sent.
    Service service(desktop);
    const bool attached = service.attach(*agent);
    ::kill(static_cast<pid_t>(agent->pid()), SIGCONT);
    ASSERT_TRUE(attached);

    service.send("flags 0");
    EXPECT_TRUE(itemGoes()) << "the new owner is obeyed";
    const QList<XWindow> popUps = agent->freeWindows();
    ASSERT_EQ(popUps.size(), 1);
    // What waits goes to the file as the one before it is closed.
    const QRect popUp = popUps.first().geometry;
    desktop.input().click({popUp.center().x(), popUp.bottom() - 25});
    const MessageCache cache(desktop.environment().value(QStringLiteral("HOME")));
    EXPECT_TRUE(waitUntil([&] { return cache.texts() == waiting; })) << cache.texts().size();
    EXPECT_EQ(send({command("meso"), sender(self), flags(2)}), 0);
    EXPECT_FALSE(agent->dockedItem()) << "and the old one no more";
}

TEST_F(RawLink, IgnoresAnEventThatNamesAnotherRunningProcessAsItsSender)
{
    Service service(desktop);
    ASSERT_TRUE(service.attach(*agent));
    const qint64 owner = service.process().pid();

    EXPECT_EQ(send({command("meso"), sender(owner), flags(0)}), 0) << "in the owner's name";
    EXPECT_TRUE(itemStays());
    EXPECT_EQ(send({command("mesp"), sender(desktop.panelPid())}), 0) << "a claim in a third one's name";
    EXPECT_EQ(send({command("meqi"), sender(owner)}), 0);

    service.send("flags 0");
    EXPECT_TRUE(itemGoes()) << "the owner is the owner still";
}

TEST_F(RawLink, ObeysAnOwnerThatHasClosedItsConnectionBeforeItsEventIsHandled)
{
    EXPECT_EQ(claim(self), 0);
    for (const std::uint32_t value : {0U, 2U, 0U, 2U, 0U}) {
        ::kill(static_cast<pid_t>(agent->pid()), SIGSTOP);
        BusPeer brief(desktop.bus());
        ASSERT_TRUE(brief.connection().send(event(agent->pid(), {command("meso"), sender(self), flags(value)})));
        brief.leave();
        ::kill(static_cast<pid_t>(agent->pid()), SIGCONT);
        EXPECT_TRUE(waitUntil([&] { return agent->dockedItem().has_value() == (value != 0); })) << value;
    }
}

TEST_F(RawLink, IgnoresAStrangerThatHasClosedItsConnection)
{
    EXPECT_EQ(claim(self), 0);
    ::kill(static_cast<pid_t>(agent->pid()), SIGSTOP);
    BusPeer brief(desktop.bus());
    ASSERT_TRUE(brief.connection().send(event(agent->pid(), {command("meso"), sender(desktop.panelPid()), flags(0)})));
    brief.leave();
    ::kill(static_cast<pid_t>(agent->pid()), SIGCONT);
    EXPECT_TRUE(itemStays());
}

TEST_F(RawLink, IgnoresAnEventInTheNameOfAnOwnerThatHasEnded)
{
    Service service(desktop);
    ASSERT_TRUE(service.attach(*agent));
    const qint64 owner = service.process().pid();
    service.process().kill();
    EXPECT_EQ(send({command("meso"), sender(owner), flags(0)}), 0);
    EXPECT_EQ(send({command("meqi"), sender(owner)}), 0);
    EXPECT_TRUE(itemStays());

    EXPECT_EQ(claim(self), 0);
    EXPECT_EQ(send({command("meso"), sender(self), flags(0)}), 0);
    EXPECT_TRUE(itemGoes()) << "the place is free";
}

TEST_F(RawLink, ObeysTheLastWordsOfAnOwnerThatHasEnded)
{
    Service service(desktop);
    ASSERT_TRUE(service.attach(*agent));
    ::kill(static_cast<pid_t>(agent->pid()), SIGSTOP);
    service.send("flags 0");
    service.process().closeInput();
    const bool hasEnded = waitUntil([&] { return !service.process().isRunning(); });
    ::kill(static_cast<pid_t>(agent->pid()), SIGCONT);
    EXPECT_TRUE(hasEnded);
    EXPECT_TRUE(itemGoes());
}

TEST_F(RawLink, AnswersTheReadsErrorWhenCommandOrSenderIsMissing)
{
    EXPECT_EQ(send({sender(self)}), -1701);
    EXPECT_EQ(send({command("mesp")}), -1701);
    EXPECT_EQ(send({}), -1701);
    EXPECT_EQ(send({{QStringLiteral("mpcm"), QStringLiteral("magn"), bytesOf(std::uint32_t{0})}, sender(self)}), -1700);
}

TEST_F(RawLink, AnswersNoErrorForAnUnknownCommandAndNoHandlerForAnotherClass)
{
    EXPECT_EQ(claim(self), 0);
    EXPECT_EQ(send({command("zzzz"), sender(self), flags(0)}), 0);
    EXPECT_TRUE(itemStays());
    const QDBusReply<int> other = peer->connection().call(rawEvent(
        agentName(agent->pid()), QStringLiteral("abcd"), QStringLiteral("kvme"), {command("mesp"), sender(self)}));
    EXPECT_EQ(other.value(), -1708);
}

TEST_F(RawLink, TakesShortAndMissingListsWithoutHarm)
{
    EXPECT_EQ(claim(self), 0);
    EXPECT_EQ(send({command("meso"), sender(self), count(3), actions(bytesOf(std::uint32_t{32793}))}), 0);
    EXPECT_EQ(send({command("meso"), sender(self), count(3), actions({})}), 0);
    EXPECT_EQ(send({command("meso"), sender(self), count(1)}), -10000);
    EXPECT_EQ(send({command("meso"), sender(self), count(4'000'000'000)}), -10000);
    EXPECT_EQ(send({command("meso"), sender(self), count(4'000'000'000), actions(bytesOf(std::uint32_t{32793}))}), 0);
    EXPECT_TRUE(agent->process().isRunning());
}

TEST_F(RawLink, AllocatesNothingOnTheSendersWordAlone)
{
    EXPECT_EQ(claim(self), 0);
    const auto peakKilobytes = [this] {
        QFile status(QStringLiteral("/proc/%1/status").arg(agent->pid()));
        EXPECT_TRUE(status.open(QIODevice::ReadOnly));
        const QByteArray text = status.readAll();
        return text.mid(text.indexOf("VmHWM:") + 6).trimmed().split(' ').first().toLongLong();
    };
    const qint64 before = peakKilobytes();
    ASSERT_GT(before, 0);
    EXPECT_EQ(send({command("meso"), sender(self), count(4'000'000'000)}), -10000);
    EXPECT_EQ(send({command("meso"), sender(self), count(4'000'000'000), actions(bytesOf(std::uint32_t{1}))}), 0);
    EXPECT_LT(peakKilobytes() - before, 10'000);
}

TEST_F(RawLink, HandlesTwentyThousandEventsInARowInTheirOrder)
{
    EXPECT_EQ(claim(self), 0);
    constexpr int events = 20'000;
    for (int i = 0; i < events; ++i) {
        // Off and on again in bit 4; only the very last one takes the item away.
        const bool last = i == events - 1;
        ASSERT_TRUE(peer->connection().send(event(agent->pid(), {command("meso"), sender(self),
                                                                 flags(last    ? 0
                                                                       : i % 2 ? 2
                                                                               : 6)})));
    }
    EXPECT_EQ(send({command("zzzz"), sender(self)}), 0) << "answered after all of them";
    EXPECT_TRUE(itemGoes());
}
