#include "platform/StatusItem.h"
#include "platform/linux/include/HiddenWindow.h"
#include "platform/linux/include/XConnection.h"
#include "tests/platform/linux/item/FakeTray.h"
#include "tests/support/FakeInput.h"
#include "tests/support/WaitUntil.h"

#include <QApplication>
#include <QMenu>
#include <QRasterWindow>

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <span>
#include <vector>

namespace
{

void setOnRoot(const char *property, const std::vector<std::uint32_t> &numbers)
{
    xcb_change_property(XConnection::get(), XCB_PROP_MODE_REPLACE, XConnection::screen()->root,
                        XConnection::atom(property), XCB_ATOM_CARDINAL, 32, static_cast<std::uint32_t>(numbers.size()),
                        numbers.data());
    xcb_flush(XConnection::get());
}

std::uint32_t rootMask()
{
    xcb_connection_t *x = XConnection::get();
    const auto cookie = xcb_get_window_attributes(x, XConnection::screen()->root);
    const XcbReply<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(x, cookie, nullptr));
    return reply ? reply->your_event_mask : 0;
}

/// What a window manager owns as long as it runs.
class ManagersSelection final
{
public:
    ManagersSelection() { own(m_window.id()); }
    ~ManagersSelection() { giveUp(); }
    ManagersSelection(const ManagersSelection &) = delete;
    ManagersSelection &operator=(const ManagersSelection &) = delete;

    void giveUp() const { own(XCB_NONE); }

private:
    static void own(xcb_window_t owner)
    {
        xcb_set_selection_owner(XConnection::get(), owner, XConnection::atom("WM_S0"), XCB_CURRENT_TIME);
        xcb_flush(XConnection::get());
    }

    const HiddenWindow m_window{[] {}};
};

/// An item without a tray, whose place nobody has chosen yet.
class StripTest : public testing::Test
{
protected:
    StripTest()
    {
        forget();
        make();
    }
    ~StripTest() override { forget(); }

    static void forget()
    {
        for (const char *property :
             {"_NET_WORKAREA", "_GTK_WORKAREAS_D0", "_GTK_WORKAREAS_D1", "_NET_CURRENT_DESKTOP", "_KIVMENUA_ITEM"}) {
            xcb_delete_property(XConnection::get(), XConnection::screen()->root, XConnection::atom(property));
        }
        xcb_flush(XConnection::get());
    }

    void make()
    {
        item.emplace();
        QObject::connect(&*item, &StatusItem::pressed, &context, [this] { ++presses; });
        QObject::connect(&*item, &StatusItem::moved, &context, [this] { ++moves; });
    }

    /// With its origin at the top left.
    [[nodiscard]] QRect place() const
    {
        const std::optional<NSRect> frame = item->frame();
        return frame ? QRect(static_cast<int>(frame->origin.x),
                             800 - static_cast<int>(frame->origin.y + frame->size.height),
                             static_cast<int>(frame->size.width), static_cast<int>(frame->size.height))
                     : QRect();
    }
    [[nodiscard]] bool standsAt(int x, int y) const
    {
        return waitUntil([&] { return place() == QRect(x, y, 22, 22); });
    }

    [[nodiscard]] bool isInFrontOf(const QWindow &other) const
    {
        xcb_connection_t *x = XConnection::get();
        const auto cookie = xcb_query_tree(x, XConnection::screen()->root);
        const XcbReply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(x, cookie, nullptr));
        if (!tree) {
            return false;
        }
        const std::span lowestFirst(xcb_query_tree_children(tree.get()), tree->children_len);
        const auto place = [&](WId window) { return std::ranges::find(lowestFirst, window); };
        return place(item->getWindow()) > place(other.winId());
    }

    void dragTo(QPoint point) const
    {
        FakeInput::moveTo(place().topLeft() + QPoint(11, 11));
        FakeInput::press();
        FakeInput::moveTo(point);
        FakeInput::release();
    }

    QObject context;
    int presses = 0;
    int moves = 0;
    std::optional<StatusItem> item;
};

constexpr int usualX = 1280 - 160 - 22;

TEST_F(StripTest, StandsAtTheTopOfTheScreenWhereNoWindowManagerIs)
{
    EXPECT_TRUE(standsAt(usualX, 0));
}

TEST_F(StripTest, FollowsTheWorkArea)
{
    setOnRoot("_NET_WORKAREA", {0, 27, 1232, 773});
    EXPECT_TRUE(standsAt(usualX - 48, 27));
    setOnRoot("_NET_WORKAREA", {0, 0, 1280, 760});
    EXPECT_TRUE(standsAt(usualX, 0));
}

TEST_F(StripTest, FollowsTheWorkAreaFromDesktopToDesktop)
{
    setOnRoot("_NET_WORKAREA", {0, 27, 1280, 773, 0, 50, 1280, 750});
    EXPECT_TRUE(standsAt(usualX, 27));
    setOnRoot("_NET_CURRENT_DESKTOP", {1});
    EXPECT_TRUE(standsAt(usualX, 50));
}

TEST_F(StripTest, FollowsTheWorkAreaOfItsMonitorWhereEachHasItsOwn)
{
    setOnRoot("_NET_WORKAREA", {0, 60, 1280, 740, 0, 60, 1280, 740});
    EXPECT_TRUE(standsAt(usualX, 60));
    setOnRoot("_GTK_WORKAREAS_D1", {0, 50, 1280, 750});
    setOnRoot("_GTK_WORKAREAS_D0", {1280, 60, 1024, 540, 0, 27, 1280, 773});
    EXPECT_TRUE(standsAt(usualX, 27));
    setOnRoot("_NET_CURRENT_DESKTOP", {1});
    EXPECT_TRUE(standsAt(usualX, 50));
}

TEST_F(StripTest, IsDraggedAlongItsEdge)
{
    ASSERT_TRUE(standsAt(usualX, 0));
    FakeInput::moveTo({usualX + 11, 11});
    FakeInput::press();
    FakeInput::moveTo({411, 60});
    EXPECT_TRUE(standsAt(400, 0)) << "it does not follow the mouse";
    constexpr int wheelUp = 4;
    FakeInput::press(wheelUp);
    FakeInput::release(wheelUp);
    FakeInput::moveTo({611, 400});
    EXPECT_TRUE(standsAt(600, 0));
    EXPECT_EQ(moves, 0) << "it is still held";
    FakeInput::release();
    EXPECT_TRUE(waitUntil([this] { return moves == 1; }));
    EXPECT_EQ(presses, 0) << "that was no click";
    EXPECT_EQ(place(), QRect(600, 0, 22, 22));
}

TEST_F(StripTest, IsNotDraggedOutOfTheWorkArea)
{
    setOnRoot("_NET_WORKAREA", {48, 27, 1184, 773});
    ASSERT_TRUE(standsAt(usualX - 48, 27));
    dragTo({2, 27});
    EXPECT_TRUE(standsAt(48, 27));
    dragTo({1279, 27});
    EXPECT_TRUE(standsAt(48 + 1184 - 22, 27));
}

TEST_F(StripTest, IsPressedByAClickWithAnUnsteadyHand)
{
    ASSERT_TRUE(standsAt(usualX, 0));
    FakeInput::moveTo({usualX + 11, 11});
    FakeInput::press();
    FakeInput::moveTo({usualX + 11 + QApplication::startDragDistance() - 1, 12});
    FakeInput::release();
    EXPECT_TRUE(waitUntil([this] { return presses == 1; }));
    EXPECT_EQ(moves, 0);
    EXPECT_EQ(place(), QRect(usualX, 0, 22, 22));
}

TEST_F(StripTest, IsPressedAtOnceByTheOtherButtonAndByADragTowardsTheMenu)
{
    ASSERT_TRUE(standsAt(usualX, 0));
    FakeInput::moveTo({usualX + 11, 11});
    FakeInput::press(3);
    EXPECT_TRUE(waitUntil([this] { return presses == 1; }));
    FakeInput::release(3);

    FakeInput::press();
    FakeInput::moveTo({usualX + 11, 11 + QApplication::startDragDistance()});
    EXPECT_TRUE(waitUntil([this] { return presses == 2; }));
    FakeInput::release();
    EXPECT_EQ(place(), QRect(usualX, 0, 22, 22));
}

TEST_F(StripTest, OpensAMenuWhoseEntryADragCanChoose)
{
    ASSERT_TRUE(standsAt(usualX, 0));
    QMenu menu;
    QAction *const entry = menu.addAction(QStringLiteral("One"));
    bool isChosen = false;
    QObject::connect(entry, &QAction::triggered, &menu, [&] { isChosen = true; });
    QObject::connect(&*item, &StatusItem::pressed, &menu, [&] { menu.popup({usualX, 27}); });
    FakeInput::moveTo({usualX + 11, 11});
    FakeInput::press();
    FakeInput::moveTo({usualX + 11, 11 + QApplication::startDragDistance()});
    ASSERT_TRUE(waitUntil([&] { return menu.isVisible(); }));
    const QPoint onEntry = menu.mapToGlobal(menu.actionGeometry(entry).center());
    // It must have moved over the menu before it counts as at an entry.
    EXPECT_TRUE(waitUntil([&, step = 0]() mutable {
        FakeInput::moveTo(onEntry + QPoint(++step % 2, 0));
        return menu.activeAction() == entry;
    }));
    FakeInput::release();
    EXPECT_TRUE(waitUntil([&] { return isChosen; }));
}

TEST_F(StripTest, StandsWhereItWasPutAgain)
{
    ASSERT_TRUE(standsAt(usualX, 0));
    dragTo({711, 11});
    ASSERT_TRUE(waitUntil([this] { return moves == 1; }));
    item.reset();
    make();
    EXPECT_TRUE(standsAt(700, 0)) << "after the service has taken it away, or the agent was started again";

    setOnRoot("_NET_WORKAREA", {0, 27, 1232, 773});
    EXPECT_TRUE(standsAt(700 - 48, 27)) << "it keeps its distance from the right edge";
    setOnRoot("_NET_WORKAREA", {0, 0, 1280, 800});
    EXPECT_TRUE(standsAt(700, 0));
}

TEST_F(StripTest, StandsWhereItWasPutWhenATrayHasComeAndGone)
{
    ASSERT_TRUE(standsAt(usualX, 0));
    dragTo({711, 11});
    ASSERT_TRUE(standsAt(700, 0));
    std::optional<FakeTray> tray(std::in_place, QPoint(100, 50));
    ASSERT_TRUE(waitUntil([&] { return tray->serve(), place().topLeft() == QPoint(100, 50); }));
    tray.reset();
    EXPECT_TRUE(standsAt(700, 0));
}

TEST_F(StripTest, StaysAboveWindowsThatComeLaterAndNotAboveAScreenLocker)
{
    ASSERT_TRUE(standsAt(usualX, 0));
    QRasterWindow later;
    later.setGeometry(900, 0, 300, 300);
    later.show();
    EXPECT_TRUE(waitUntil([&] { return later.isExposed() && isInFrontOf(later); }));
    later.hide();

    QRasterWindow locker;
    locker.setFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    locker.setGeometry(0, 0, 1280, 800);
    locker.show();
    ASSERT_TRUE(waitUntil([&] { return locker.isExposed(); }));
    EXPECT_FALSE(isInFrontOf(locker));
    setOnRoot("_NET_WORKAREA", {0, 27, 1280, 773});
    EXPECT_TRUE(standsAt(usualX, 27));
    EXPECT_FALSE(isInFrontOf(locker)) << "the item has moved";
}

TEST_F(StripTest, StaysWhereItLiesWhileAWindowManagerRuns)
{
    constexpr std::uint32_t windows = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    ASSERT_TRUE(standsAt(usualX, 0));
    EXPECT_TRUE(rootMask() & windows);
    {
        const ManagersSelection manager;
        EXPECT_TRUE(waitUntil([] { return !(rootMask() & windows); })) << "it wakes up for the windows of others";
        QRasterWindow later;
        later.setGeometry(900, 0, 300, 300);
        later.show();
        ASSERT_TRUE(waitUntil([&] { return later.isExposed(); }));
        EXPECT_FALSE(isInFrontOf(later));
        manager.giveUp();
        EXPECT_TRUE(waitUntil([&] { return isInFrontOf(later); })) << "the manager has gone";
    }
    item.reset();
    EXPECT_FALSE(rootMask() & windows);
}

TEST_F(StripTest, TakesNoDistanceThatNoScreenHas)
{
    const std::vector<std::uint32_t> nonsense[] = {{50}, {0xffffffff, 0x10000}, {50, 60}, {50, 0x10000, 1}};
    for (const std::vector<std::uint32_t> &numbers : nonsense) {
        setOnRoot("_KIVMENUA_ITEM", numbers);
        item.reset();
        make();
        EXPECT_TRUE(standsAt(usualX, 0)) << testing::PrintToString(numbers);
    }
    setOnRoot("_KIVMENUA_ITEM", {100, 0x20000});
    item.reset();
    make();
    EXPECT_TRUE(standsAt(1280 - 50 - 22, 0)) << "it was put there when a point was two pixels";
}

} // namespace
