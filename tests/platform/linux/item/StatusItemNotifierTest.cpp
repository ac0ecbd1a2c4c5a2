#include "platform/StatusItem.h"
#include "platform/linux/include/SessionBus.h"
#include "tests/platform/linux/item/FakeNotifierHost.h"
#include "tests/platform/linux/item/FakeTray.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/WaitUntil.h"

#include <QMenu>
#include <QPixmap>

#include <gtest/gtest.h>

#include <optional>

namespace
{

constexpr NSRect stripFrame{{1258, 778}, {22, 22}};

QIcon redIcon()
{
    QPixmap pixmap(22, 22);
    pixmap.fill(Qt::red);
    return QIcon(pixmap);
}

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
    EXPECT_TRUE(host.activateFirst());
    EXPECT_TRUE(waitUntil([&] { return presses == 1 && menu.isVisible(); }));
    menu.close();

    item.setEnabled(false);
    EXPECT_TRUE(host.activateFirst());
    item.setEnabled(true);
    EXPECT_TRUE(host.activateFirst());
    EXPECT_TRUE(waitUntil([&] { return presses > 1; }));
    EXPECT_EQ(presses, 2);
}

TEST_F(StatusItemNotifierTest, LeavesTheStripForAHostThatComesLaterAndReturnsWhenItGoes)
{
    StatusItem item;
    item.setImage(redIcon());
    ASSERT_EQ(item.frame(), stripFrame);
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
