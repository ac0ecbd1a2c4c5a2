#include "platform/StatusItem.h"
#include "platform/linux/include/SessionBus.h"
#include "platform/linux/include/XConnection.h"
#include "tests/platform/linux/item/FakeNotifierHost.h"
#include "tests/platform/linux/item/FakeTray.h"
#include "tests/platform/linux/screen/windows/PublishedWorkArea.h"
#include "tests/support/BusPeer.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FakeInput.h"
#include "tests/support/LogLines.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TestXServer.h"
#include "tests/support/WaitUntil.h"
#include "tests/support/Xrandr.h"

#include <QDBusPendingCall>
#include <QElapsedTimer>
#include <QMenu>
#include <QPixmap>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace
{

constexpr NSRect stripFrame{{1098, 778}, {22, 22}};
const QString activate = QStringLiteral("Activate");

QIcon redIcon()
{
    QPixmap pixmap(22, 22);
    pixmap.fill(Qt::red);
    return QIcon(pixmap);
}

/// A watcher, with a host, in a process of its own, which has that DISPLAY and is no client of any X server.
class WatcherOfADisplay
{
public:
    explicit WatcherOfADisplay(const QString &display, const QStringList &name = {})
    {
        m_program.environment.insert(QStringLiteral("DISPLAY"), display);
        EXPECT_TRUE(m_program.start(QStringLiteral(KIV_NOTIFIER_WATCHER), name));
        EXPECT_TRUE(waitUntil([this] { return m_program.output().contains('\n'); }));
    }

    [[nodiscard]] qsizetype itemCount() { return m_program.output().count("item"); }

private:
    ChildProcess m_program;
};

/// A host in such a process, of whichever watcher there is.
class HostOfADisplay final : private WatcherOfADisplay
{
public:
    explicit HostOfADisplay(const QString &display)
        : WatcherOfADisplay(display, {QStringLiteral("org.kde.StatusNotifierHost-1-") + display.mid(1)})
    {
    }
};

const QString displayElsewhere = QStringLiteral(":12345");

class StatusItemNotifierTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        bus = new PrivateBus;
        ASSERT_TRUE(bus->start());
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus->address().toLocal8Bit());
        ASSERT_TRUE(waitUntil([] { return SessionBus::instance().isConnected(); }));
    }

    static void TearDownTestSuite()
    {
        delete bus;
        bus = nullptr;
    }

    /// As a key does.
    static void requestMenu()
    {
        const BusPeer peer(*bus);
        const QDBusPendingCall call = peer.connection().asyncCall(QDBusMessage::createMethodCall(
            SessionBus::instance().connection().baseService(), QStringLiteral("/com/tamborel/kivune/Menu"),
            QStringLiteral("com.tamborel.kivune.Menu"), QStringLiteral("ShowMenu")));
        EXPECT_TRUE(waitUntil([&] { return call.isFinished() && !call.isError(); }));
    }

    static PrivateBus *bus;
};

PrivateBus *StatusItemNotifierTest::bus = nullptr;

TEST_F(StatusItemNotifierTest, IsGivenToAHostThatIsTheOnlyOne)
{
    FakeNotifierHost host(bus->address());
    StatusItem item;
    item.setImage(redIcon());
    EXPECT_TRUE(waitUntil([&] { return host.items().size() == 1; }));
    EXPECT_EQ(item.frame(), std::nullopt);
    EXPECT_EQ(item.getWindow(), WId{0}) << "the host draws it";
    EXPECT_EQ(item.getScreen(), nullptr);
}

TEST_F(StatusItemNotifierTest, TellsAPressAfterTheHostHasHadItsAnswer)
{
    FakeNotifierHost host(bus->address());
    StatusItem item;
    item.setImage(redIcon());
    ASSERT_TRUE(waitUntil([&] { return host.items().size() == 1; }));
    int presses = 0;
    QMenu menu;
    menu.addAction(QStringLiteral("One"));
    QObject::connect(&item, &StatusItem::pressed, &menu, [&] {
        ++presses;
        menu.popup({100, 100});
    });
    EXPECT_TRUE(host.choose(activate));
    EXPECT_TRUE(waitUntil([&] { return presses == 1 && menu.isVisible(); }));
    menu.close();

    item.setEnabled(false);
    EXPECT_TRUE(host.choose(activate));
    item.setEnabled(true);
    EXPECT_TRUE(host.choose(activate));
    EXPECT_TRUE(waitUntil([&] { return presses > 1; }));
    EXPECT_EQ(presses, 2);
}

TEST_F(StatusItemNotifierTest, WarnsOfAWatcherThatRefusesIt)
{
    FakeNotifierHost host(bus->address());
    host.refuseItems();
    LogLines log;
    StatusItem item;
    item.setImage(redIcon());
    std::vector<std::string> warnings;
    EXPECT_TRUE(waitUntil([&] {
        const std::vector<std::string> more = log.takeWarnings();
        warnings.insert(warnings.end(), more.begin(), more.end());
        return !warnings.empty();
    }));
    EXPECT_THAT(warnings, testing::ElementsAre("kiv.item: the StatusNotifierItem watcher refuses the item: "
                                               "\"org.freedesktop.DBus.Error.AccessDenied\" \"No room\""));
}

TEST_F(StatusItemNotifierTest, SaysThatItsWatcherHasTakenItAndLaterThatThereIsNone)
{
    std::optional<FakeNotifierHost> host(std::in_place, bus->address());
    LogLines log;
    StatusItem item;
    item.setImage(redIcon());
    std::vector<std::string> lines;
    const auto hasSaid = [&](const char *line) {
        const std::vector<std::string> more = log.take();
        lines.insert(lines.end(), more.begin(), more.end());
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    };
    EXPECT_TRUE(waitUntil([&] { return hasSaid("kiv.item: the StatusNotifierItem watcher has taken the item"); }));
    host.reset();
    EXPECT_TRUE(waitUntil([&] { return hasSaid("kiv.item: there is no StatusNotifierItem watcher"); }));
    EXPECT_THAT(log.takeWarnings(), testing::IsEmpty()) << "to go is not to refuse";
}

TEST_F(StatusItemNotifierTest, IsPressedAtThePlaceThatTheHostTells)
{
    FakeNotifierHost host(bus->address());
    StatusItem item;
    item.setImage(redIcon());
    ASSERT_TRUE(waitUntil([&] { return host.items().size() == 1; }));
    std::vector<std::optional<NSPoint>> places;
    QObject::connect(&item, &StatusItem::pressed, &item,
                     [&](std::optional<NSPoint> place) { places.push_back(place); });
    EXPECT_TRUE(host.choose(activate, {300, 20}));
    EXPECT_TRUE(host.choose(QStringLiteral("ContextMenu"), {310, 790}));
    EXPECT_TRUE(host.choose(activate, {0, 0}));
    EXPECT_TRUE(waitUntil([&] { return places.size() == 3; }));
    EXPECT_THAT(places, testing::ElementsAre(NSPoint{300, 780}, NSPoint{310, 10}, std::nullopt));
}

TEST_F(StatusItemNotifierTest, IsWhereItWasPressedLastWhenItsMenuIsAskedFor)
{
    FakeNotifierHost host(bus->address());
    StatusItem item;
    item.setImage(redIcon());
    ASSERT_TRUE(waitUntil([&] { return host.items().size() == 1; }));
    std::vector<std::optional<NSPoint>> places;
    QObject::connect(&item, &StatusItem::pressed, &item,
                     [&](std::optional<NSPoint> place) { places.push_back(place); });
    const auto waitForPress = [&] {
        EXPECT_TRUE(waitUntil([&] { return !places.empty(); }));
        return std::exchange(places, {});
    };
    FakeInput::moveTo({500, 600});
    const testing::Matcher<std::vector<std::optional<NSPoint>>> atTheMouse = testing::ElementsAre(NSPoint{500, 200});
    const testing::Matcher<std::vector<std::optional<NSPoint>>> atTheItem = testing::ElementsAre(NSPoint{300, 780});
    requestMenu();
    EXPECT_THAT(waitForPress(), atTheMouse) << "it has never been pressed";
    EXPECT_TRUE(host.choose(activate, {300, 20}));
    EXPECT_THAT(waitForPress(), atTheItem);
    requestMenu();
    EXPECT_THAT(waitForPress(), atTheItem);

    EXPECT_TRUE(host.choose(activate, {0, 0}));
    EXPECT_THAT(waitForPress(), testing::ElementsAre(std::nullopt)) << "that host does not know";
    requestMenu();
    EXPECT_THAT(waitForPress(), atTheItem);

    ASSERT_TRUE(xrandr({QStringLiteral("-s"), QStringLiteral("1024x768")}));
    requestMenu();
    EXPECT_THAT(waitForPress(), testing::ElementsAre(NSPoint{500, 168})) << "the panel is another one now";
    ASSERT_TRUE(xrandr({QStringLiteral("-s"), QStringLiteral("1280x800")}));
    EXPECT_TRUE(host.choose(activate, {300, 20}));
    EXPECT_THAT(waitForPress(), atTheItem);

    FakeNotifierHost second(bus->address());
    ASSERT_TRUE(waitUntil([&] { return second.items().size() == 1; }));
    requestMenu();
    EXPECT_THAT(waitForPress(), atTheMouse) << "the next one has it elsewhere";
    {
        const PublishedWorkArea area({0, 0, 1280, 760});
        requestMenu();
        EXPECT_THAT(waitForPress(), testing::ElementsAre(NSPoint{1259, 21})) << "there is a panel";
        EXPECT_TRUE(second.choose(activate, {300, 20}));
        EXPECT_THAT(waitForPress(), atTheItem);
        requestMenu();
        EXPECT_THAT(waitForPress(), atTheItem);
    }
}

TEST_F(StatusItemNotifierTest, IsHandedOverFromOneHostToTheNext)
{
    FakeNotifierHost first(bus->address());
    StatusItem item;
    item.setImage(redIcon());
    ASSERT_TRUE(waitUntil([&] { return first.items().size() == 1; }));
    FakeNotifierHost second(bus->address());
    EXPECT_TRUE(waitUntil([&] { return second.items().size() == 1; }));
    EXPECT_TRUE(waitUntil([&] { return first.items().isEmpty(); }));

    int presses = 0;
    QObject::connect(&item, &StatusItem::pressed, &item, [&] { ++presses; });
    EXPECT_TRUE(second.choose(activate));
    EXPECT_TRUE(waitUntil([&] { return presses == 1; }));
}

TEST_F(StatusItemNotifierTest, ComesBackWithEachWatcher)
{
    auto host = std::make_unique<FakeNotifierHost>(bus->address());
    StatusItem item;
    item.setImage(redIcon());
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(waitUntil([&] { return host->items().size() == 1; })) << round;
        host.reset();
        EXPECT_TRUE(waitUntil([&] { return item.frame() == stripFrame; })) << round;
        host = std::make_unique<FakeNotifierHost>(bus->address());
    }
}

TEST_F(StatusItemNotifierTest, IsNotGivenToAWatcherWithoutAHost)
{
    FakeNotifierHost watcher(bus->address(), FakeNotifierHost::Host::Missing);
    StatusItem item;
    item.setImage(redIcon());
    EXPECT_TRUE(waitUntil([&] { return item.frame() == stripFrame; }));
    EXPECT_TRUE(watcher.items().isEmpty());

    watcher.setHost(FakeNotifierHost::Host::Registered);
    EXPECT_TRUE(waitUntil([&] { return watcher.items().size() == 1; }));
    EXPECT_EQ(item.frame(), std::nullopt);

    watcher.setHost(FakeNotifierHost::Host::Missing);
    EXPECT_TRUE(waitUntil([&] { return item.frame() == stripFrame; }));
    EXPECT_TRUE(waitUntil([&] { return watcher.items().isEmpty(); }));
}

TEST_F(StatusItemNotifierTest, IsNotGivenToAHostOfAnotherDisplay)
{
    WatcherOfADisplay watcher(displayElsewhere);
    {
        StatusItem item;
        item.setImage(redIcon());
        EXPECT_TRUE(waitUntil([&] { return item.frame() == stripFrame; }));
    }
    // The same watcher may have a host here as well, but it draws what it gets, or another host does.
    BusPeer host(*bus);
    ASSERT_TRUE(host.connection().registerService(QStringLiteral("org.kde.StatusNotifierHost-1")));
    StatusItem item;
    item.setImage(redIcon());
    EXPECT_TRUE(waitUntil([&] { return item.frame() == stripFrame; }));
    EXPECT_EQ(watcher.itemCount(), 0);
}

TEST_F(StatusItemNotifierTest, IsNotGivenToAWatcherWhileItHasAHostOfAnotherDisplayToo)
{
    FakeNotifierHost host(bus->address());
    const HostOfADisplay ours(testXServer().display());
    std::optional<HostOfADisplay> theirs(displayElsewhere);
    StatusItem item;
    item.setImage(redIcon());
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(waitUntil([&] { return item.frame() == stripFrame; })) << round;
        EXPECT_TRUE(host.items().isEmpty()) << round;
        theirs.reset();
        EXPECT_TRUE(waitUntil([&] { return host.items().size() == 1; })) << "it has gone " << round;
        EXPECT_EQ(item.frame(), std::nullopt);
        theirs.emplace(displayElsewhere);
    }
}

TEST_F(StatusItemNotifierTest, IsNotGivenToAProxyForAHostOfAnotherDisplay)
{
    ChildProcess proxy;
    ASSERT_TRUE(proxy.start(QStringLiteral(KIV_TRAY_PROXY), {}));
    ASSERT_TRUE(waitUntil([&] { return XConnection::selectionOwner(XConnection::traySelection()) != XCB_NONE; }));
    std::optional<WatcherOfADisplay> watcher(displayElsewhere);
    StatusItem item;
    item.setImage(redIcon());
    EXPECT_TRUE(waitUntil([&] { return item.frame() == stripFrame; }));
    EXPECT_FALSE(proxy.output().contains("asked"));

    watcher.reset();
    EXPECT_TRUE(waitUntil([&] { return proxy.output().contains("asked"); })) << "better than nothing";
    watcher.emplace(displayElsewhere);
    EXPECT_TRUE(waitUntil([&] { return item.frame() == stripFrame; }));
    EXPECT_EQ(watcher->itemCount(), 0);
}

TEST_F(StatusItemNotifierTest, IsGivenToAHostThatNamesThisDisplay)
{
    WatcherOfADisplay here(testXServer().display() + QStringLiteral(".0"));
    StatusItem item;
    item.setImage(redIcon());
    EXPECT_TRUE(waitUntil([&] { return here.itemCount() == 1; }));
    EXPECT_EQ(item.frame(), std::nullopt);
}

TEST_F(StatusItemNotifierTest, LeavesTheStripForAHostThatComesLaterAndReturnsWhenItGoes)
{
    StatusItem item;
    item.setImage(redIcon());
    ASSERT_TRUE(waitUntil([&] { return item.frame() == stripFrame; })) << "there may be a host of before still";
    {
        FakeNotifierHost host(bus->address());
        EXPECT_TRUE(waitUntil([&] { return host.items().size() == 1; }));
        EXPECT_EQ(item.frame(), std::nullopt);
    }
    EXPECT_TRUE(waitUntil([&] { return item.frame() == stripFrame; }));
}

TEST_F(StatusItemNotifierTest, PrefersATray)
{
    FakeNotifierHost host(bus->address());
    std::optional<FakeTray> tray(std::in_place, QPoint(100, 50));
    StatusItem item;
    item.setImage(redIcon());
    EXPECT_TRUE(waitUntil([&] { return tray->serve(), item.frame().has_value(); }));
    EXPECT_TRUE(host.items().isEmpty());

    tray.reset();
    EXPECT_TRUE(waitUntil([&] { return host.items().size() == 1; }));
    EXPECT_EQ(item.frame(), std::nullopt);

    tray.emplace(QPoint(300, 50));
    EXPECT_TRUE(waitUntil([&] { return tray->serve(), item.frame().has_value(); }));
    EXPECT_TRUE(host.items().isEmpty());
}

TEST_F(StatusItemNotifierTest, PrefersTheHostToAProxyForIt)
{
    ChildProcess proxy;
    ASSERT_TRUE(proxy.start(QStringLiteral(KIV_TRAY_PROXY), {}));
    ASSERT_TRUE(waitUntil([&] { return XConnection::selectionOwner(XConnection::traySelection()) != XCB_NONE; }));
    std::optional<FakeNotifierHost> host(std::in_place, bus->address());
    StatusItem item;
    item.setImage(redIcon());
    EXPECT_TRUE(waitUntil([&] { return host->items().size() == 1; }));
    EXPECT_FALSE(proxy.output().contains("asked")) << "not even at first";

    host.reset();
    EXPECT_TRUE(waitUntil([&] { return proxy.output().contains("asked"); })) << "better than nothing";
    host.emplace(bus->address());
    EXPECT_TRUE(waitUntil([&] { return host->items().size() == 1; }));
}

TEST_F(StatusItemNotifierTest, OffersItsMenuToTheHost)
{
    FakeNotifierHost host(bus->address());
    QMenu menu;
    QAction *const action = menu.addAction(QStringLiteral("One"));
    StatusItem item;
    item.setImage(redIcon());
    item.setMenu(&menu);
    ASSERT_TRUE(waitUntil([&] { return host.items().size() == 1; }));
    int choices = 0;
    QObject::connect(action, &QAction::triggered, &menu, [&] { ++choices; });
    EXPECT_TRUE(host.chooseEntry(1));
    EXPECT_EQ(choices, 1);
    item.setEnabled(false);
    EXPECT_TRUE(host.chooseEntry(1));
    EXPECT_EQ(choices, 1) << "a panel has to be answered first";

    item.setMenu(nullptr);
    ASSERT_TRUE(waitUntil([&] { return host.items().size() == 1; }));
    EXPECT_FALSE(host.chooseEntry(1)) << "there is no such menu any more";
}

TEST_F(StatusItemNotifierTest, StandsAloneWhileTheBusTakesNoConnectionForItAndIsTriedAgain)
{
    FakeNotifierHost host(bus->address());
    QMenu menu;
    StatusItem item;
    item.setImage(redIcon());
    ASSERT_TRUE(waitUntil([&] { return host.items().size() == 1; }));
    bus->suspend();
    QElapsedTimer time;
    time.start();
    item.setMenu(&menu); // For which it is given to the host anew.
    EXPECT_LT(time.elapsed(), 2000);
    EXPECT_TRUE(waitUntil([&] { return item.frame() == stripFrame; }));

    bus->resume();
    EXPECT_TRUE(
        waitUntil([&] { return item.frame() == std::nullopt && host.items().size() == 1; }, std::chrono::seconds(20)));
}

TEST_F(StatusItemNotifierTest, SurvivesTheBus)
{
    auto host = std::make_unique<FakeNotifierHost>(bus->address());
    StatusItem item;
    item.setImage(redIcon());
    ASSERT_TRUE(waitUntil([&] { return host->items().size() == 1; }));
    bus->stop();
    EXPECT_TRUE(waitUntil([&] { return item.frame() == stripFrame; }));
    host.reset();

    ASSERT_TRUE(bus->start());
    host = std::make_unique<FakeNotifierHost>(bus->address());
    EXPECT_TRUE(waitUntil([&] { return host->items().size() == 1; }, std::chrono::seconds(20)));
    EXPECT_EQ(item.frame(), std::nullopt);
}

} // namespace
