#include "platform/linux/include/SessionBus.h"

#include "platform/linux/bus/SessionBusAddress.h"
#include "platform/linux/workarounds/bus/SilentBus.h"
#include "tests/support/BusForOne.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/SilentSocket.h"
#include "tests/support/StallingBus.h"
#include "tests/support/WaitUntil.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{

using namespace std::chrono_literals;

QString folderOf(const PrivateBus &bus)
{
    return QFileInfo(bus.address().mid(QStringLiteral("unix:path=").size())).path();
}

TEST(SessionBus, HasNoConnectionWhenNoBusIsNamed)
{
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", {});
    const ScopedVariable runtime("XDG_RUNTIME_DIR", {});
    const SessionBus bus;
    EXPECT_FALSE(bus.isConnected());
    EXPECT_FALSE(bus.connection().isConnected());
    EXPECT_EQ(bus.processOf(QStringLiteral("org.freedesktop.DBus")), std::nullopt);
}

TEST(SessionBus, TakesTheGivenAddress)
{
    PrivateBus daemon;
    ASSERT_TRUE(daemon.start());
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", daemon.address().toUtf8());
    const SessionBus bus;
    EXPECT_TRUE(bus.isConnected());
    EXPECT_FALSE(bus.connection().baseService().isEmpty());
}

TEST(SessionBus, AsksABusThatWasProbedAheadNoSecondTimeButOnlyOnce)
{
    PrivateBus daemon;
    ASSERT_TRUE(daemon.start());
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", daemon.address().toUtf8());
    EXPECT_TRUE(SessionBus::probeAhead());
    // The bus numbers its connections, probes too.
    EXPECT_EQ(SessionBus().connection().baseService(), QStringLiteral(":1.1"));
    EXPECT_EQ(SessionBus().connection().baseService(), QStringLiteral(":1.3"));
}

TEST(SessionBus, TriesAgainWhenTheBusThatWasProbedAheadHasGoneMeanwhile)
{
    std::optional<PrivateBus> daemon;
    daemon.emplace();
    ASSERT_TRUE(daemon->start());
    const QByteArray gone = daemon->address().toUtf8();
    {
        const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", gone);
        EXPECT_TRUE(SessionBus::probeAhead());
    }
    daemon.reset();
    PrivateBus next;
    ASSERT_TRUE(next.start());
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", next.address().toUtf8());
    SessionBus bus(10ms);
    EXPECT_TRUE(waitUntil([&] { return bus.isConnected(); }));
}

TEST(SessionBus, TakesTheSocketInTheRuntimeFolderWithoutAnAddress)
{
    PrivateBus daemon;
    ASSERT_TRUE(daemon.start());
    const QTemporaryDir home;
    const QString oddlyNamed = home.filePath(QStringLiteral("run ~;,=%41"));
    ASSERT_TRUE(QFile::link(folderOf(daemon), oddlyNamed));
    const ScopedVariable runtime("XDG_RUNTIME_DIR", oddlyNamed.toUtf8());
    for (const QByteArray &given : {QByteArray(), QByteArray("")}) {
        const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", given);
        const SessionBus bus;
        EXPECT_TRUE(bus.isConnected());
    }
}

TEST(SessionBus, NeverLetsABusBeLaunched)
{
    PrivateBus daemon;
    ASSERT_TRUE(daemon.start());
    const ScopedVariable runtime("XDG_RUNTIME_DIR", folderOf(daemon).toUtf8());
    for (const char *given : {"autolaunch:", "disabled:", "autolaunch:;disabled:"}) {
        const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", given);
        const SessionBus bus;
        EXPECT_TRUE(bus.isConnected()) << given << " counts as none";
    }
}

TEST(SessionBus, TakesTheFirstOfSeveralAddressesThatAnswers)
{
    PrivateBus daemon;
    ASSERT_TRUE(daemon.start());
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent;" + daemon.address().toUtf8());
    EXPECT_TRUE(SessionBus().isConnected());
}

TEST(SessionBus, TakesABusThatNeverAnswersForNoneUntilOneDoes)
{
    PrivateBus daemon;
    const QString path = folderOf(daemon) + QStringLiteral("/bus");
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", daemon.address().toUtf8());
    std::optional<SilentSocket> silent(path);
    QElapsedTimer time;
    time.start();
    SessionBus bus(10ms);
    EXPECT_LT(time.elapsed(), 1000);
    EXPECT_FALSE(bus.isConnected());

    silent.reset();
    ASSERT_TRUE(daemon.start());
    EXPECT_TRUE(waitUntil([&] { return bus.isConnected(); }));
}

TEST(SessionBus, TakesABusThatStallsBeforeItsWelcomeForNone)
{
    const StallingBus stalling;
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", stalling.address());
    QElapsedTimer time;
    time.start();
    const SessionBus bus;
    EXPECT_LT(time.elapsed(), 1000);
    EXPECT_FALSE(bus.isConnected());
}

TEST(SessionBus, TakesABusAtItsLimitForNoneUntilThereIsAPlace)
{
    const BusForOne crowded;
    ASSERT_TRUE(crowded.isRunning());
    const QString occupant = QStringLiteral("occupant");
    ASSERT_TRUE(QDBusConnection::connectToBus(QString::fromLatin1(crowded.address()), occupant).isConnected());
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", crowded.address());
    SessionBus bus(10ms);
    EXPECT_FALSE(bus.isConnected());

    QDBusConnection::disconnectFromBus(occupant);
    EXPECT_TRUE(waitUntil([&] { return bus.isConnected(); }));
}

TEST(SessionBus, OutlivesALibraryThatIsRefusedByABusAtItsLimit)
{
    const BusForOne crowded;
    ASSERT_TRUE(crowded.isRunning());
    const QString address = QString::fromLatin1(crowded.address());
    const QString occupant = QStringLiteral("occupant from the first");
    ASSERT_TRUE(QDBusConnection::connectToBus(address, occupant).isConnected());
    const SessionBus bus;
    // As when the last place is taken just after it was seen to be free. libdbus has a warning to give then.
    const QString late = QStringLiteral("late");
    EXPECT_FALSE(QDBusConnection::connectToBus(address, late).isConnected());
    QDBusConnection::disconnectFromBus(late);
    QDBusConnection::disconnectFromBus(occupant);
}

TEST(SessionBus, GetsTheLastPlaceOfABus)
{
    const BusForOne crowded;
    ASSERT_TRUE(crowded.isRunning());
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", crowded.address());
    for (int round = 0; round < 20; ++round) {
        // The round before may still be about to leave.
        ASSERT_TRUE(waitUntil([] { return probeBus(sessionBusAddress()).state == BusState::Answers; }));
        EXPECT_TRUE(SessionBus().isConnected());
    }
}

TEST(SessionBus, OutlivesABusThatRefusesAtTheLastMoment)
{
    const BusForOne crowded;
    ASSERT_TRUE(crowded.isRunning());
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", crowded.address());
    const SessionBus bus;
    ASSERT_TRUE(bus.isConnected());
    // As a bus does whose last place is taken between the probe and the connection proper.
    const QString refused = QStringLiteral("refused");
    EXPECT_FALSE(QDBusConnection::connectToBus(QString::fromLatin1(crowded.address()), refused).isConnected());
    QDBusConnection::disconnectFromBus(refused);
}

TEST(SessionBus, DoesNotWaitForAnotherConnectionToABusThatStallsByThen)
{
    PrivateBus daemon;
    ASSERT_TRUE(daemon.start());
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", daemon.address().toUtf8());
    const SessionBus bus;
    ASSERT_TRUE(bus.isConnected());
    daemon.suspend();
    QElapsedTimer time;
    time.start();
    EXPECT_FALSE(bus.connectOnceMore().isConnected());
    EXPECT_LT(time.elapsed(), 2000);
    daemon.resume();
    const QDBusConnection another = bus.connectOnceMore();
    EXPECT_TRUE(another.isConnected());
    EXPECT_NE(another.baseService(), bus.connection().baseService());
    QDBusConnection::disconnectFromBus(another.name());
}

TEST(SessionBus, HasNoOtherConnectionToABusWithoutRoom)
{
    const BusForOne crowded;
    ASSERT_TRUE(crowded.isRunning());
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", crowded.address());
    SessionBus bus(10ms);
    ASSERT_TRUE(waitUntil([&] { return bus.isConnected(); }));
    EXPECT_FALSE(bus.connectOnceMore().isConnected());
}

TEST(SessionBus, DoesNotWaitInTheQueueOfABusThatTakesNobody)
{
    const QTemporaryDir folder;
    const SilentSocket silent(folder.filePath(QStringLiteral("bus")), 0);
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", silent.address());
    QElapsedTimer time;
    time.start();
    const SessionBus first;
    const SessionBus second;
    const SessionBus third;
    EXPECT_LT(time.elapsed(), 2500);
    EXPECT_FALSE(third.isConnected());
}

TEST(SessionBus, ConnectsOnceABusIsThere)
{
    PrivateBus daemon;
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", daemon.address().toUtf8());
    SessionBus bus(10ms);
    int connections = 0;
    QObject::connect(&bus, &SessionBus::connected, [&] { ++connections; });
    EXPECT_FALSE(bus.isConnected());

    ASSERT_TRUE(daemon.start());
    EXPECT_TRUE(waitUntil([&] { return bus.isConnected(); }));
    EXPECT_EQ(connections, 1);
}

TEST(SessionBus, ComesBackUnderANewConnectionEveryTimeTheBusDoes)
{
    PrivateBus daemon;
    ASSERT_TRUE(daemon.start());
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", daemon.address().toUtf8());
    SessionBus bus(10ms);
    QByteArray story;
    QObject::connect(&bus, &SessionBus::connected, [&] { story += bus.isConnected() ? "up " : "wrong "; });
    QObject::connect(&bus, &SessionBus::disconnected, [&] { story += bus.isConnected() ? "wrong " : "down "; });

    for (int round = 0; round < 2; ++round) {
        const QString before = bus.connection().name();
        story.clear();
        daemon.stop();
        ASSERT_TRUE(waitUntil([&] { return !story.isEmpty(); }));
        EXPECT_FALSE(bus.isConnected());
        EXPECT_EQ(bus.processOf(QStringLiteral("org.freedesktop.DBus")), std::nullopt);
        ASSERT_TRUE(daemon.start());
        ASSERT_TRUE(waitUntil([&] { return bus.isConnected(); }));
        EXPECT_EQ(story, "down up ");
        EXPECT_NE(bus.connection().name(), before);
    }
}

TEST(SessionBus, KnowsTheProcessBehindAName)
{
    PrivateBus daemon;
    ASSERT_TRUE(daemon.start());
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", daemon.address().toUtf8());
    const SessionBus bus;
    const QString name = QStringLiteral("com.example.Named");
    EXPECT_EQ(bus.processOf(name), 0);
    ASSERT_TRUE(bus.connection().registerService(name));
    EXPECT_EQ(bus.processOf(name), QCoreApplication::applicationPid());
    EXPECT_EQ(bus.processOf(bus.connection().baseService()), QCoreApplication::applicationPid());
    EXPECT_EQ(bus.processOf(QStringLiteral(":1.4711")), 0);
    EXPECT_EQ(bus.processOf(QString()), 0);
    EXPECT_EQ(bus.processOf(QStringLiteral("no name")), 0);
}

TEST(SessionBus, HasANameThatAnotherHadOnceThatHasGone)
{
    PrivateBus daemon;
    ASSERT_TRUE(daemon.start());
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", daemon.address().toUtf8());
    const QString name = QStringLiteral("com.example.Coveted");
    const SessionBus bus;
    {
        const SessionBus squatter;
        ASSERT_TRUE(squatter.requestName(name));
        EXPECT_TRUE(bus.requestName(name));
        EXPECT_EQ(bus.ownerOf(name), squatter.connection().baseService());
    }
    EXPECT_TRUE(waitUntil([&] { return bus.ownerOf(name) == bus.connection().baseService(); }));
    EXPECT_FALSE(bus.requestName(QStringLiteral("no name")));
}

TEST(SessionBus, IsOneInstanceThatMayEndWithTheProcess)
{
    // Its bus outlives neither this test nor the program's end: neither may hurt the static's destructor.
    PrivateBus daemon;
    ASSERT_TRUE(daemon.start());
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", daemon.address().toUtf8());
    EXPECT_EQ(&SessionBus::instance(), &SessionBus::instance());
    // Another test may have left it without a bus, which it then looks for anew by and by.
    EXPECT_TRUE(waitUntil([] { return SessionBus::instance().isConnected(); }));
}

} // namespace
