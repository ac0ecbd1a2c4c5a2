#include "Agent.h"
#include "Desktop.h"
#include "Service.h"
#include "tests/platform/linux/RawEvent.h"
#include "tests/support/BusPeer.h"
#include "tests/support/WaitUntil.h"

#include <QDBusReply>
#include <QFile>

#include <gtest/gtest.h>

#include <unistd.h>

namespace
{

/// This process speaks to the agent in the wire's own terms, as a service that nobody of ours wrote would.
class RawLink : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(desktop.start());
        ASSERT_TRUE(desktop.startWindowManager());
        ASSERT_TRUE(desktop.startPanel());
        agent.emplace(desktop);
        ASSERT_TRUE(agent->startAndDock());
        ASSERT_TRUE(waitUntil([this] { return agent->isLinked(); }));
        peer.emplace(desktop.bus());
    }

    static RawParameter command(const char *code)
    {
        // The code's first character is the number's most significant byte; the number travels in host byte order.
        std::uint32_t number = 0;
        for (const char *character = code; *character; ++character) {
            number = number << 8 | static_cast<unsigned char>(*character);
        }
        return {QStringLiteral("mpcm"), QStringLiteral("long"), bytesOf(number)};
    }
    static RawParameter sender(qint64 pid)
    {
        const std::uint32_t words[] = {0, static_cast<std::uint32_t>(pid)};
        return {QStringLiteral("mpsn"), QStringLiteral("psn "),
                QByteArray(reinterpret_cast<const char *>(words), sizeof words)};
    }
    static RawParameter flags(std::uint32_t value)
    {
        return {QStringLiteral("mpfl"), QStringLiteral("magn"), bytesOf(value)};
    }
    static RawParameter count(std::uint32_t value)
    {
        return {QStringLiteral("mpan"), QStringLiteral("magn"), bytesOf(value)};
    }
    static RawParameter actions(const QByteArray &bytes)
    {
        return {QStringLiteral("mpac"), QStringLiteral("uibu"), bytes};
    }

    [[nodiscard]] QString agentName() const { return QStringLiteral("com.tamborel.kivune.p%1").arg(agent->pid()); }

    /// Sends an event and returns the handler's status.
    int send(const QList<RawParameter> &parameters)
    {
        const QDBusReply<int> reply =
            peer->connection().call(rawEvent(agentName(), QStringLiteral("kvmc"), QStringLiteral("kvme"), parameters));
        EXPECT_TRUE(reply.isValid()) << qPrintable(reply.error().message());
        return reply.value();
    }

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
    Desktop desktop;
    std::optional<Agent> agent;
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
    const QDBusReply<int> other = peer->connection().call(
        rawEvent(agentName(), QStringLiteral("abcd"), QStringLiteral("kvme"), {command("mesp"), sender(self)}));
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
        ASSERT_TRUE(peer->connection().send(rawEvent(agentName(), QStringLiteral("kvmc"), QStringLiteral("kvme"),
                                                     {command("meso"), sender(self),
                                                      flags(last    ? 0
                                                            : i % 2 ? 2
                                                                    : 6)})));
    }
    EXPECT_EQ(send({command("zzzz"), sender(self)}), 0) << "answered after all of them";
    EXPECT_TRUE(itemGoes());
}
