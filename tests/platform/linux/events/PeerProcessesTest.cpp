#include "platform/linux/events/PeerProcesses.h"

#include "platform/linux/include/SessionBus.h"
#include "tests/support/BusPeer.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/WaitUntil.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

namespace
{

using namespace std::chrono_literals;

class PeerProcessesTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(bus.isConnected()); }

    PrivateBus daemon;
    bool isStarted = daemon.start();
    ScopedVariable address{"DBUS_SESSION_BUS_ADDRESS", daemon.address().toUtf8()};
    SessionBus bus{10ms};
    PeerProcesses peers{bus};
};

TEST_F(PeerProcessesTest, RemembersAPeerUntilItGoes)
{
    BusPeer peer(daemon);
    const QString name = peer.name();
    EXPECT_EQ(peers.processOf(name), QCoreApplication::applicationPid());
    EXPECT_EQ(peers.processOf(name), QCoreApplication::applicationPid());
    EXPECT_EQ(peers.count(), 1);

    peer.leave();
    EXPECT_TRUE(waitUntil([&] { return peers.count() == 0; }));
    EXPECT_EQ(peers.processOf(name), 0);
}

TEST_F(PeerProcessesTest, DoesNotRememberWhoHasGone)
{
    EXPECT_EQ(peers.processOf(QStringLiteral(":1.4711")), 0);
    EXPECT_EQ(peers.count(), 0);
}

TEST_F(PeerProcessesTest, AsksTheBusOnceAboutWhoHasGone)
{
    BusPeer peer(daemon);
    const QString known = peer.name();
    const QString unknown = QStringLiteral(":1.4711");
    EXPECT_EQ(peers.knownProcessOf(known), std::nullopt);
    EXPECT_EQ(peers.processOf(known), QCoreApplication::applicationPid());
    EXPECT_EQ(peers.knownProcessOf(known), QCoreApplication::applicationPid());
    EXPECT_EQ(peers.processOf(unknown), 0);
    peer.leave();
    ASSERT_TRUE(waitUntil([&] { return peers.count() == 0; }));

    daemon.stop(); // Nobody is left to ask, which nobody has been told yet.
    EXPECT_EQ(peers.processOf(known), 0);
    EXPECT_EQ(peers.processOf(unknown), 0);
    EXPECT_EQ(peers.processOf(QStringLiteral(":1.4712")), std::nullopt);
    EXPECT_TRUE(waitUntil([&] { return !peers.knownProcessOf(unknown); })) << "another bus counts from the start";
}

TEST_F(PeerProcessesTest, RemembersTheLatestOfThoseWhoHaveGone)
{
    for (int number = 0; number <= 1000; ++number) {
        EXPECT_EQ(peers.processOf(QStringLiteral(":9.%1").arg(number)), 0);
    }
    EXPECT_EQ(peers.knownProcessOf(QStringLiteral(":9.0")), std::nullopt);
    EXPECT_EQ(peers.knownProcessOf(QStringLiteral(":9.1000")), 0);
}

TEST_F(PeerProcessesTest, StartsAnewWithTheBus)
{
    const BusPeer peer(daemon);
    EXPECT_NE(peers.processOf(peer.name()), 0);
    daemon.stop();
    ASSERT_TRUE(waitUntil([&] { return !bus.isConnected() && peers.count() == 0; }));

    ASSERT_TRUE(daemon.start());
    ASSERT_TRUE(waitUntil([&] { return bus.isConnected(); }));
    BusPeer next(daemon);
    EXPECT_EQ(peers.processOf(next.name()), QCoreApplication::applicationPid());
    next.leave();
    EXPECT_TRUE(waitUntil([&] { return peers.count() == 0; })) << "the new connection is watched too";
}

} // namespace
