#include "platform/linux/events/DistributedNotificationSignal.h"

#include "platform/linux/include/SessionBus.h"
#include "tests/support/BusPeer.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/WaitUntil.h"

#include <QDBusMessage>
#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace
{

using namespace std::chrono_literals;

const QString name = QStringLiteral("KivSomethingHappened");
const QString ours = QStringLiteral("com.tamborel.kivune.DistributedNotifications");

class DistributedNotificationSignalTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(daemon.start()); }

    void post(const QString &member = name, const QString &interface = ours, const QString &path = QStringLiteral("/"),
              const QVariantList &arguments = {}) const
    {
        const BusPeer peer(daemon);
        QDBusMessage signal = QDBusMessage::createSignal(path, interface, member);
        signal.setArguments(arguments);
        ASSERT_TRUE(peer.connection().send(signal));
        // Its answer comes after the bus has passed the signal on.
        peer.connection().call(QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId")));
    }

    PrivateBus daemon;
    const ScopedVariable address{"DBUS_SESSION_BUS_ADDRESS", daemon.address().toUtf8()};
};

TEST_F(DistributedNotificationSignalTest, HearsItsNameFromAnyPathAndWithAnyArguments)
{
    SessionBus bus(10ms);
    int heard = 0;
    const DistributedNotificationSignal observer(bus, name, [&heard] { ++heard; });
    post();
    EXPECT_TRUE(waitUntil([&] { return heard == 1; }));
    post(name, ours, QStringLiteral("/com/tamborel/anywhere"), {QStringLiteral("details"), 7});
    EXPECT_TRUE(waitUntil([&] { return heard == 2; }));
}

TEST_F(DistributedNotificationSignalTest, HearsTheFirstOfManyAtOnceAndTheOthersTogether)
{
    SessionBus bus(10ms);
    int heard = 0;
    int heardOfTheEnd = 0;
    const QString end = QStringLiteral("KivSomethingElse");
    const DistributedNotificationSignal observer(bus, name, [&heard] { ++heard; });
    const DistributedNotificationSignal observerOfTheEnd(bus, end, [&] { heardOfTheEnd = heard; });
    const BusPeer peer(daemon);
    constexpr int posted = 2000;
    QElapsedTimer duration;
    duration.start();
    for (int i = 0; i < posted; ++i) {
        ASSERT_TRUE(peer.connection().send(QDBusMessage::createSignal(QStringLiteral("/"), ours, name)));
    }
    ASSERT_TRUE(peer.connection().send(QDBusMessage::createSignal(QStringLiteral("/"), ours, end)));
    ASSERT_TRUE(waitUntil([&] { return heardOfTheEnd > 0; }));
    EXPECT_LE(heard, 1 + duration.elapsed() / DistributedNotificationSignal::pauseAfterACall.count());
}

TEST_F(DistributedNotificationSignalTest, HearsWhatIsPostedWhileItTells)
{
    SessionBus bus(10ms);
    int heard = 0;
    const DistributedNotificationSignal observer(bus, name, [&] {
        if (++heard == 1) {
            post();
        }
    });
    post();
    EXPECT_TRUE(waitUntil([&] { return heard == 2; }));
}

TEST_F(DistributedNotificationSignalTest, DoesNotHearOtherNamesOrInterfaces)
{
    SessionBus bus(10ms);
    int heard = 0;
    const DistributedNotificationSignal observer(bus, name, [&heard] { ++heard; });
    post(QStringLiteral("KivSomethingElse"));
    post(name, QStringLiteral("com.tamborel.kivune.Other"));
    post(); // Comes last.
    ASSERT_TRUE(waitUntil([&] { return heard > 0; }));
    EXPECT_EQ(heard, 1);
}

TEST_F(DistributedNotificationSignalTest, HearsAgainOnceTheBusIsBack)
{
    SessionBus bus(10ms);
    int heard = 0;
    const DistributedNotificationSignal observer(bus, name, [&heard] { ++heard; });
    for (int round = 1; round <= 2; ++round) {
        daemon.stop();
        ASSERT_TRUE(waitUntil([&] { return !bus.isConnected(); }));
        ASSERT_TRUE(daemon.start());
        ASSERT_TRUE(waitUntil([&] { return bus.isConnected(); }));
        post();
        EXPECT_TRUE(waitUntil([&] { return heard == round; }));
    }
}

TEST_F(DistributedNotificationSignalTest, HearsAsSoonAsThereIsABus)
{
    daemon.stop();
    SessionBus bus(10ms);
    int heard = 0;
    const DistributedNotificationSignal observer(bus, name, [&heard] { ++heard; });
    ASSERT_TRUE(daemon.start());
    ASSERT_TRUE(waitUntil([&] { return bus.isConnected(); }));
    post();
    EXPECT_TRUE(waitUntil([&] { return heard == 1; }));
}

TEST_F(DistributedNotificationSignalTest, IsNotHeardAfterItsEnd)
{
    SessionBus bus(10ms);
    int heard = 0;
    int heardByTheOther = 0;
    auto observer = std::make_unique<DistributedNotificationSignal>(bus, name, [&heard] { ++heard; });
    const DistributedNotificationSignal other(bus, name, [&heardByTheOther] { ++heardByTheOther; });
    observer.reset();
    post();
    ASSERT_TRUE(waitUntil([&] { return heardByTheOther == 1; }));
    EXPECT_EQ(heard, 0);
}

} // namespace
