#include "notify/queue/QueueLimits.h"
#include "tests/session/support/FeedMessages.h"
#include "tests/session/support/MessageCache.h"
#include "tests/session/support/RawCommand.h"
#include "tests/session/support/Session.h"
#include "tests/session/support/SettingsProgram.h"
#include "tests/support/BusPeer.h"
#include "tests/support/FeedServer.h"
#include "tests/support/ProcessMemory.h"
#include "tests/support/WaitUntil.h"

#include <QCoreApplication>
#include <QDBusPendingCall>
#include <QDBusReply>
#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <X11/keysym.h>
#include <algorithm>
#include <atomic>
#include <thread>

namespace
{

using namespace std::chrono_literals;

/// How many events the flood has; KIV_FLOOD_EVENTS says otherwise.
int floodEvents()
{
    const int wanted = qEnvironmentVariableIntValue("KIV_FLOOD_EVENTS");
    return wanted > 0 ? wanted : 20'000;
}

/// A session whose pop-ups stay until somebody closes them.
bool startWithPopUpsThatStay(Session &session)
{
    Session::Setting setting;
    setting.beforeTheAgent = [&] {
        SettingsProgram::write(session.desktop, 1, 4, 0);
        return true;
    };
    return session.start(setting);
}

/// What would take the item away, did it come from the owner.
QDBusMessage intrusion(qint64 agentPid, qint64 claimedSender)
{
    using namespace RawCommand;
    return event(agentPid, {command("meso"), sender(claimedSender), flags(0)});
}

QDBusMessage pingOfTheBus()
{
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
                                          QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping"));
}

/// Sends as fast as the bus takes it, from a thread of its own. To every thousandth call, and to the last, it wants an
/// answer.
class Flood final
{
public:
    /// What has become of those whose fate is asked for.
    struct Fates {
        int asked = 0;
        int handled = 0;
        int refused = 0;
    };

    Flood(const PrivateBus &bus, const QList<QDBusMessage> &kinds, int events)
        : m_peer(bus)
        , m_thread([this, kinds, events] { run(kinds, events); })
    {
    }
    ~Flood() { join(); }
    Flood(const Flood &) = delete;
    Flood &operator=(const Flood &) = delete;

    /// True once each of them is handled or refused.
    [[nodiscard]] bool isOver() const { return m_isOver; }
    /// Waits until it is over.
    [[nodiscard]] Fates fates()
    {
        join();
        return m_fates;
    }

private:
    void run(const QList<QDBusMessage> &kinds, int events)
    {
        constexpr int atOnce = 1000;
        constexpr int anHour = 3'600'000;
        QList<QDBusPendingCall> answers;
        for (int i = 1; i <= events; ++i) {
            const QDBusMessage &event = kinds.at(i % kinds.size());
            const bool isMilestone = i % atOnce == 0 || i == events;
            if (isMilestone && event.type() == QDBusMessage::MethodCallMessage) {
                answers.append(m_peer.connection().asyncCall(event, anHour));
            } else {
                m_peer.connection().send(event);
            }
            if (isMilestone) {
                m_peer.connection().call(pingOfTheBus()); // Qt would keep what the bus has not taken yet.
            }
        }
        for (QDBusPendingCall &answer : answers) {
            answer.waitForFinished();
            const QDBusReply<int> reply = answer.reply();
            ++m_fates.asked;
            m_fates.handled += reply.isValid() && reply.value() == 0 ? 1 : 0;
            m_fates.refused += reply.error().type() == QDBusError::LimitsExceeded ? 1 : 0;
        }
        m_isOver = true;
    }
    void join()
    {
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }

    BusPeer m_peer;
    std::atomic<bool> m_isOver = false;
    Fates m_fates; ///< The thread's while it runs.
    std::thread m_thread;
};

/// One connection after the other, each of which goes behind a few events, from a thread of its own.
class FloodOfConnections final
{
public:
    FloodOfConnections(const PrivateBus &bus, const QDBusMessage &event, int connections)
        : m_thread([this, &bus, event, connections] {
            constexpr int eventsOfEach = 20;
            for (int i = 0; i < connections; ++i) {
                const BusPeer peer(bus);
                for (int k = 0; k < eventsOfEach; ++k) {
                    peer.connection().send(event);
                }
                peer.connection().call(pingOfTheBus());
            }
            m_isOver = true;
        })
    {
    }
    ~FloodOfConnections() { m_thread.join(); }
    FloodOfConnections(const FloodOfConnections &) = delete;
    FloodOfConnections &operator=(const FloodOfConnections &) = delete;

    [[nodiscard]] bool isOver() const { return m_isOver; }

private:
    std::atomic<bool> m_isOver = false;
    std::thread m_thread;
};

/// Milliseconds from a click on the item to its menu, the only window then. Closes it.
qint64 answerOfTheMenu(Session &session, Agent &agent)
{
    XInput &input = session.desktop.input();
    QElapsedTimer clicked;
    clicked.start();
    input.click(agent.dockedItem()->geometry.center());
    const bool isOpen = waitUntil(
        [&] {
            const QList<XWindow> windows = agent.freeWindows();
            return windows.size() == 1 && agent.isDrawn(windows.last());
        },
        60s);
    const qint64 took = clicked.elapsed();
    EXPECT_TRUE(isOpen) << "the menu does not open";
    input.key(XK_Escape);
    EXPECT_TRUE(waitUntil([&] { return agent.freeWindows().isEmpty(); }, 60s)) << "the menu does not close";
    return took;
}

} // namespace

TEST(Flood, OfEventsFromAStrangerLosesNoneOfTheOwnersAndLeavesTheMenuToTheUser)
{
    Session session;
    ASSERT_TRUE(startWithPopUpsThatStay(session));
    Agent &agent = *session.agent;
    Service &service = *session.service;
    XInput &input = session.desktop.input();
    const QImage on = agent.itemPicture();
    const QPoint item = agent.dockedItem()->geometry.center();
    const QPoint elsewhere = QPoint(400, 600);
    const qint64 memoryBefore = ProcessMemory::peakKilobytes(agent.pid());

    const int events = floodEvents();
    const qint64 owner = service.process().pid();
    QElapsedTimer duration;
    duration.start();
    Flood flood(session.desktop.bus(),
                {intrusion(agent.pid(), QCoreApplication::applicationPid()), intrusion(agent.pid(), owner)}, events);

    // This one is on the screen to the end, and all others wait behind it.
    service.send("hint 0");
    ASSERT_TRUE(waitUntil([&] { return agent.freeWindows().size() == 1; }, 60s)) << "the hint is lost";
    int rounds = 0;
    qint64 slowestMenu = 0;
    qint64 slowestCommand = 0;
    do {
        ++rounds;
        service.send("hint " + QByteArray::number(rounds));
        input.move(elsewhere);
        QElapsedTimer commanded;
        commanded.start();
        service.send("flags 2");
        ASSERT_TRUE(waitUntil([&] { return agent.itemPicture() != on; }, 60s)) << "a command is lost";
        service.send("flags 6");
        ASSERT_TRUE(waitUntil([&] { return agent.itemPicture() == on; }, 60s)) << "a command is lost";
        slowestCommand = std::max(slowestCommand, commanded.elapsed());

        QElapsedTimer clicked;
        clicked.start();
        input.click(item);
        ASSERT_TRUE(waitUntil(
            [&] {
                const QList<XWindow> windows = agent.freeWindows();
                return windows.size() == 2 && agent.isDrawn(windows.last());
            },
            60s))
            << "the menu does not open";
        slowestMenu = std::max(slowestMenu, clicked.elapsed());
        input.key(XK_Down, Session::Workspace + 1);
        input.key(XK_Right);
        input.key(XK_Return);
        ASSERT_TRUE(waitUntil([&] { return service.events().size() == rounds; }, 60s)) << "a choice is lost";
        ASSERT_TRUE(waitUntil([&] { return agent.freeWindows().size() == 1; }, 60s)) << "the menu does not close";
    } while (!flood.isOver());
    const qint64 took = duration.elapsed();

    // Who has too many events waiting is refused: those of the owner never are.
    const Flood::Fates fates = flood.fates();
    EXPECT_GT(fates.asked, 0);
    EXPECT_EQ(fates.handled + fates.refused, fates.asked);
    EXPECT_LT(slowestMenu, 2000) << "milliseconds from the click to the menu";
    EXPECT_EQ(service.events(), QByteArrayList(rounds, "meoa 32793 Minimize"));
    EXPECT_EQ(agent.systemLog(), QByteArrayList());

    // What waits goes to the file as the one before it is closed.
    const XWindow popUp = agent.freeWindows().first();
    input.click({popUp.geometry.center().x(), popUp.geometry.bottom() - 25});
    ASSERT_TRUE(waitUntil([&] {
        const QList<XWindow> windows = agent.freeWindows();
        return windows.size() == 1 && windows.first().id != popUp.id;
    }));
    std::vector<std::string> hints;
    for (int round = 1; round <= std::min(rounds, QueueLimits::maxHints); ++round) { // Further ones are refused.
        hints.push_back(std::to_string(round));
    }
    EXPECT_EQ(MessageCache(session.desktop.environment().value(QStringLiteral("HOME"))).texts(), hints);

    const qint64 memory = ProcessMemory::peakKilobytes(agent.pid()) - memoryBefore;
    // However many there are, no more than so many wait.
    EXPECT_LT(memory, 400'000);

    std::printf(
        "%d events took %.1f s; of %d, one in a thousand, %d were handled and %d refused; none of the owner's %d "
        "lost; the menu answered after %lld ms at most, a command of the owner after %lld ms; peak memory %lld kB "
        "more\n",
        events, static_cast<double>(took) / 1000, fates.asked, fates.handled, fates.refused, 3 * rounds + 1,
        static_cast<long long>(slowestMenu), static_cast<long long>(slowestCommand), static_cast<long long>(memory));
}

TEST(Flood, OfWhatIsNoEventLeavesTheMenuToTheUser)
{
    Session session;
    ASSERT_TRUE(startWithPopUpsThatStay(session));
    Agent &agent = *session.agent;
    for (const QDBusMessage &kind : {RawCommand::settingsAnnounced(), RawCommand::questionForTheContract(agent.pid()),
                                     RawCommand::questionForTheMenusContract(agent.pid()),
                                     RawCommand::newsOfAScreenReader(), RawCommand::newsOfTheColours()}) {
        qint64 longest = 0;
        int rounds = 0;
        Flood flood(session.desktop.bus(), {kind}, floodEvents());
        do {
            ++rounds;
            longest = std::max(longest, answerOfTheMenu(session, agent));
        } while (!flood.isOver() && !testing::Test::HasFailure());
        EXPECT_LT(longest, 2000) << "milliseconds from the click to the menu; " << kind.member().toStdString();
        std::printf("%d of %s: the menu answered after %lld ms at most, in %d rounds\n", floodEvents(),
                    qPrintable(kind.member()), static_cast<long long>(longest), rounds);
    }
}

TEST(Flood, OfConnectionsThatComeAndGoLeavesTheMenuToTheUser)
{
    Session session;
    ASSERT_TRUE(startWithPopUpsThatStay(session));
    Agent &agent = *session.agent;
    qint64 longest = 0;
    constexpr int connections = 3000;
    const FloodOfConnections flood(session.desktop.bus(), intrusion(agent.pid(), QCoreApplication::applicationPid()),
                                   connections);
    do {
        longest = std::max(longest, answerOfTheMenu(session, agent));
    } while (!flood.isOver() && !testing::Test::HasFailure());
    EXPECT_LT(longest, 2000) << "milliseconds from the click to the menu";
    agent.process().terminate();
    EXPECT_TRUE(waitUntil([&] { return !agent.process().isRunning(); })) << "it answers them all before it ends";
    std::printf("%d connections: the menu answered after %lld ms at most\n", connections,
                static_cast<long long>(longest));
}

TEST(Flood, OfEventsOfAMegabyteTakesTheMemoryOfAFewOfThem)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer has an allocator of its own"; // It keeps 256 MB of what is freed.
#endif
    using namespace RawCommand;
    Session session;
    ASSERT_TRUE(startWithPopUpsThatStay(session));
    Agent &agent = *session.agent;
    const QByteArray text(1'000'000, 'x');
    const QList<RawParameter> hint{
        command("medh"),
        sender(session.service->process().pid()),
        {QStringLiteral("mpht"), QStringLiteral("ptxt"), text},
        {QStringLiteral("mphs"), QStringLiteral("magn"), bytesOf(static_cast<std::uint32_t>(text.size()))}};
    const qint64 memoryBefore = ProcessMemory::peakKilobytes(agent.pid());
    Flood flood(session.desktop.bus(), {event(agent.pid(), hint)}, 300);
    EXPECT_TRUE(waitUntil([&] { return flood.isOver(); }, 120s));
    const qint64 memory = ProcessMemory::peakKilobytes(agent.pid()) - memoryBefore;
    std::printf("300 events of a megabyte: peak memory %lld kB more\n", static_cast<long long>(memory));
    EXPECT_LT(memory, 100'000);
}

TEST(Flood, OfMessagesInTheFeedLeavesTheMenuToTheUser)
{
    constexpr int messages = 10'000;
    const QByteArray kilobyte = QByteArray("Many words that take some time to be measured. ").repeated(16);
    QList<FeedMessage> flood;
    for (int id = 1; id <= messages; ++id) {
        flood.append({.id = QByteArray::number(id), .text = kilobyte});
    }
    FeedServer server;
    ASSERT_TRUE(server.start({{.body = feedDocument(flood), .gated = true}}));
    Session session;
    Session::Setting setting;
    setting.feed = server.address(QStringLiteral("/messages"));
    ASSERT_TRUE(session.start(setting));
    Agent &agent = *session.agent;
    const BusPeer peer(session.desktop.bus());
    server.open(0);

    // A command to nobody is answered by the thread that the user's clicks wait for.
    qint64 longest = 0;
    QElapsedTimer sinceTheStart;
    sinceTheStart.start();
    do {
        QElapsedTimer asked;
        asked.start();
        RawCommand::send(peer, agent.pid(), {RawCommand::command("zzzz"), RawCommand::sender(agent.pid())});
        longest = std::max(longest, asked.elapsed());
    } while (agent.freeWindows().isEmpty() && !sinceTheStart.hasExpired(60'000));
    EXPECT_EQ(agent.freeWindows().size(), 1) << "the first message is not shown";
    EXPECT_LT(longest, 2000) << "milliseconds without an answer";
    std::printf("%d messages: shown after %lld ms, without an answer for %lld ms at most\n", messages,
                static_cast<long long>(sinceTheStart.elapsed()), static_cast<long long>(longest));
}
