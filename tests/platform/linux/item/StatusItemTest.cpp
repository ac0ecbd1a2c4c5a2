#include "platform/StatusItem.h"

#include "platform/MainScreen.h"
#include "platform/linux/include/XConnection.h"
#include "platform/linux/item/strip/Strip.h"
#include "tests/platform/linux/PrivatePanel.h"
#include "tests/platform/linux/item/FakeTray.h"
#include "tests/support/FakeInput.h"
#include "tests/support/LogLines.h"
#include "tests/support/WaitUntil.h"
#include "tests/support/Xrandr.h"

#include <QApplication>
#include <QGuiApplication>
#include <QImage>
#include <QMenu>
#include <QPixmap>
#include <QScreen>
#include <QToolTip>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <X11/keysym.h>
#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

// An X server that tests can have always shows something: the linker leads those who make a strip here first.
std::unique_ptr<Strip> makeStrip() __asm__("__real__ZN5Strip4makeEv");
std::unique_ptr<Strip> makeStripOnAScreen() __asm__("__wrap__ZN5Strip4makeEv");

namespace
{

using namespace std::chrono_literals;

const QRect usualStrip(1098, 0, 22, 22);

bool hasScreen = true;

QIcon iconOf(const QColor &colour)
{
    QPixmap pixmap(22, 22);
    pixmap.fill(colour);
    return QIcon(pixmap);
}

} // namespace

std::unique_ptr<Strip> makeStripOnAScreen()
{
    return hasScreen ? makeStrip() : nullptr;
}

namespace
{

/// Every window of the server that belongs to a status item, wherever it is in the tree.
std::vector<xcb_window_t> itemWindows(xcb_window_t below = XConnection::screen()->root)
{
    std::vector<xcb_window_t> found;
    xcb_connection_t *x = XConnection::get();
    const XcbReply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(x, xcb_query_tree(x, below), nullptr));
    for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i) {
        const xcb_window_t child = xcb_query_tree_children(tree.get())[i];
        const auto cookie = xcb_get_property(x, false, child, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 32);
        const XcbReply<xcb_get_property_reply_t> name(xcb_get_property_reply(x, cookie, nullptr));
        if (name && QByteArray(static_cast<const char *>(xcb_get_property_value(name.get())),
                               xcb_get_property_value_length(name.get()))
                        .startsWith("kivmenua")) {
            found.push_back(child);
        }
        const std::vector<xcb_window_t> deeper = itemWindows(child);
        found.insert(found.end(), deeper.begin(), deeper.end());
    }
    return found;
}

xcb_window_t parentOf(xcb_window_t window)
{
    xcb_connection_t *x = XConnection::get();
    const XcbReply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(x, xcb_query_tree(x, window), nullptr));
    return tree ? tree->parent : XCB_NONE;
}

/// The window's rectangle on the root window, added up from one parent to the next.
QRect placeOf(xcb_window_t window)
{
    xcb_connection_t *x = XConnection::get();
    QRect place;
    for (xcb_window_t at = window; at != XConnection::screen()->root && at != XCB_NONE; at = parentOf(at)) {
        const XcbReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(x, xcb_get_geometry(x, at), nullptr));
        if (!geometry) {
            return {};
        }
        if (at == window) {
            place.setSize({geometry->width, geometry->height});
        }
        place.translate(geometry->x, geometry->y);
    }
    return place;
}

QRect qtPlace(const StatusItem &item)
{
    const std::optional<NSRect> frame = item.frame();
    if (!frame) {
        return {};
    }
    const QPoint bottomLeft = MainScreen::toQt(frame->origin);
    const QSize size(static_cast<int>(frame->size.width), static_cast<int>(frame->size.height));
    return {bottomLeft - QPoint(0, size.height()), size};
}

QColor screenColour(QPoint point)
{
    return QGuiApplication::primaryScreen()->grabWindow(0, point.x(), point.y(), 1, 1).toImage().pixelColor(0, 0);
}

/// Counts presses from its construction on.
class PressCounter final
{
public:
    explicit PressCounter(StatusItem &item)
    {
        QObject::connect(&item, &StatusItem::pressed, &m_context, [this] { ++count; });
    }

    int count = 0;

private:
    QObject m_context;
};

/// Lets the event loop work off all that the server has sent so far.
void settleEvents()
{
    bool done = false;
    const XcbReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(XConnection::get(), xcb_get_input_focus(XConnection::get()), nullptr));
    // Twice through the queue: the first turn works events off, the second what those have queued.
    QMetaObject::invokeMethod(
        qGuiApp,
        [&done] {
            QMetaObject::invokeMethod(
                qGuiApp, [&done] { done = true; }, Qt::QueuedConnection);
        },
        Qt::QueuedConnection);
    EXPECT_TRUE(waitUntil([&done] { return done; }));
}

class StatusItemTest : public testing::Test
{
protected:
    void SetUp() override { FakeInput::moveTo({640, 400}); }

    void startPanel()
    {
        ASSERT_TRUE(panel.start());
        ASSERT_TRUE(waitUntil([] { return XConnection::selectionOwner(XConnection::traySelection()) != XCB_NONE; }));
    }

    void stopPanel()
    {
        panel.stop();
        ASSERT_TRUE(waitUntil([] { return XConnection::selectionOwner(XConnection::traySelection()) == XCB_NONE; }));
    }

    void TearDown() override { stopPanel(); }

    PrivatePanel panel;
};

class DockedStatusItemTest : public StatusItemTest
{
protected:
    void SetUp() override
    {
        StatusItemTest::SetUp();
        startPanel();
        item.setImage(iconOf(Qt::red));
        waitForDocking();
    }

    void waitForDocking()
    {
        // Until then it stands alone, above the panel's window, and is as red there.
        ASSERT_TRUE(waitUntil([this] {
            return item.frame() &&
                   parentOf(static_cast<xcb_window_t>(item.getWindow())) != XConnection::screen()->root &&
                   screenColour(qtPlace(item).center()) == QColor(Qt::red);
        })) << "not in the tray";
    }

    StatusItem item;
};

TEST_F(DockedStatusItemTest, IsOneWindowInsideThePanelAndItsFrameIsThatWindows)
{
    const std::vector<xcb_window_t> windows = itemWindows();
    ASSERT_EQ(windows.size(), 1U);
    EXPECT_NE(parentOf(windows[0]), XConnection::screen()->root);
    EXPECT_EQ(qtPlace(item), placeOf(windows[0]));
    EXPECT_EQ(item.getWindow(), windows[0]);
    EXPECT_EQ(item.getScreen(), QGuiApplication::primaryScreen());
    EXPECT_TRUE(QRect(0, 0, 1280, 32).contains(qtPlace(item)));
    EXPECT_FALSE(qtPlace(item).intersects(usualStrip) && qtPlace(item).top() == 0);
}

TEST_F(DockedStatusItemTest, TellsEachPressOfThePrimaryAndTheRightButtonOnce)
{
    PressCounter presses(item);
    FakeInput::click(qtPlace(item).center());
    ASSERT_TRUE(waitUntil([&] { return presses.count > 0; }));
    settleEvents();
    EXPECT_EQ(presses.count, 1);
    FakeInput::click(qtPlace(item).center(), 2);
    FakeInput::click(qtPlace(item).center());
    ASSERT_TRUE(waitUntil([&] { return presses.count > 1; }));
    settleEvents();
    EXPECT_EQ(presses.count, 2);
    FakeInput::click(qtPlace(item).center(), 3);
    EXPECT_TRUE(waitUntil([&] { return presses.count == 3; }));
}

TEST_F(DockedStatusItemTest, IsFadedAndDeafWhileDisabled)
{
    PressCounter presses(item);
    item.setEnabled(false);
    const auto colour = [this] { return screenColour(qtPlace(item).center()); };
    const int behind = screenColour({500, 16}).red();
    EXPECT_TRUE(waitUntil([&] { return colour().red() > behind + 30 && colour().red() < 225; }))
        << "neither red nor what lies behind it";
    FakeInput::click(qtPlace(item).center());
    settleEvents();
    EXPECT_EQ(presses.count, 0);

    item.setEnabled(true);
    EXPECT_TRUE(waitUntil([&] { return colour() == QColor(Qt::red); }));
    FakeInput::click(qtPlace(item).center());
    EXPECT_TRUE(waitUntil([&] { return presses.count == 1; }));
}

TEST_F(DockedStatusItemTest, ShowsAnotherImageAtOnce)
{
    item.setImage(iconOf(Qt::blue));
    EXPECT_TRUE(waitUntil([this] { return screenColour(qtPlace(item).center()) == QColor(Qt::blue); }));
    item.setImage(QIcon());
    EXPECT_TRUE(waitUntil([this] {
        return screenColour(qtPlace(item).center()) == screenColour({500, 16});
    })) << "nothing but the panel's background";
}

TEST_F(DockedStatusItemTest, SurvivesItsPanelAndReturnsWithItWithoutAStripInBetween)
{
    stopPanel();
    ASSERT_TRUE(waitUntil([this] { return !item.frame(); }));
    settleEvents();
    EXPECT_TRUE(itemWindows().empty());
    startPanel();
    bool stripSeen = false;
    EXPECT_TRUE(waitUntil([&] {
        stripSeen = stripSeen || qtPlace(item) == usualStrip;
        return item.frame() && screenColour(qtPlace(item).center()) == QColor(Qt::red);
    }));
    EXPECT_FALSE(stripSeen);
    EXPECT_EQ(itemWindows().size(), 1U);
    PressCounter presses(item);
    FakeInput::click(qtPlace(item).center());
    EXPECT_TRUE(waitUntil([&] { return presses.count == 1; }));
}

TEST_F(DockedStatusItemTest, StandsAloneWhenItsPanelStaysAway)
{
    stopPanel();
    EXPECT_TRUE(waitUntil([this] { return qtPlace(item) == usualStrip; }));
    EXPECT_EQ(itemWindows().size(), 1U);
}

TEST_F(DockedStatusItemTest, DocksAgainAfterTheScreenHasChangedItsSize)
{
    ASSERT_TRUE(xrandr({QStringLiteral("-s"), QStringLiteral("1920x1200")}));
    EXPECT_TRUE(waitUntil([this] { return qtPlace(item).left() > 1800 && qtPlace(item).top() > 0; }));
    EXPECT_EQ(itemWindows().size(), 1U);
    ASSERT_TRUE(xrandr({QStringLiteral("-s"), QStringLiteral("1280x800")}));
    EXPECT_TRUE(waitUntil([this] { return item.frame() && qtPlace(item).left() < 1280 && qtPlace(item).top() > 0; }));
}

/// What the agent does with a press: the menu opens under the item.
class StatusItemMenuTest : public DockedStatusItemTest
{
protected:
    void SetUp() override
    {
        DockedStatusItemTest::SetUp();
        menu.addAction(QStringLiteral("One"));
        menu.addMenu(QStringLiteral("Two"))->addAction(QStringLiteral("Three"));
        QObject::connect(&item, &StatusItem::pressed, &menu, [this] {
            ++opened;
            menu.popup(qtPlace(item).bottomLeft() + QPoint(0, 10));
        });
        QObject::connect(&menu, &QMenu::aboutToHide, &menu, [this] { ++closed; });
    }

    void pressToOpen()
    {
        FakeInput::click(qtPlace(item).center());
        ASSERT_TRUE(waitUntil([this] { return menu.isVisible(); }));
        settleEvents();
        ASSERT_TRUE(menu.isVisible()) << "the release has closed it";
    }

    int opened = 0;
    int closed = 0;
    QMenu menu;
};

TEST_F(StatusItemMenuTest, ClosesOnASecondPressAndDoesNotOpenAgain)
{
    pressToOpen();
    FakeInput::click(qtPlace(item).center());
    ASSERT_TRUE(waitUntil([this] { return closed == 1; }));
    settleEvents();
    EXPECT_EQ(opened, 1);
    EXPECT_FALSE(menu.isVisible());

    pressToOpen();
    FakeInput::click(qtPlace(item).center(), 3);
    EXPECT_TRUE(waitUntil([this] { return closed == 2; }));
    settleEvents();
    EXPECT_EQ(opened, 2);
}

TEST_F(StatusItemMenuTest, ClosesWithItsSubmenuOnASecondPress)
{
    pressToOpen();
    FakeInput::moveTo(menu.mapToGlobal(menu.actionGeometry(menu.actions().at(1)).center()));
    ASSERT_TRUE(waitUntil([this] { return menu.actions().at(1)->menu()->isVisible(); }));
    FakeInput::click(qtPlace(item).center());
    EXPECT_TRUE(waitUntil([this] { return closed == 1; }));
    settleEvents();
    EXPECT_EQ(opened, 1);
    EXPECT_FALSE(menu.actions().at(1)->menu()->isVisible());
}

TEST_F(StatusItemMenuTest, ChoosesTheEntryOnWhichADragFromTheItemEnds)
{
    QAction *chosen = nullptr;
    QObject::connect(&menu, &QMenu::triggered, &menu, [&](QAction *action) { chosen = action; });
    FakeInput::moveTo(qtPlace(item).center());
    FakeInput::press();
    ASSERT_TRUE(waitUntil([this] { return menu.isVisible(); }));
    const QPoint entry = menu.mapToGlobal(menu.actionGeometry(menu.actions().at(0)).center());
    // Not all at once: Qt would leave out the moves that another one follows, and with them that the mouse has moved.
    FakeInput::moveTo(entry - QPoint(5, 0));
    settleEvents();
    FakeInput::moveTo(entry);
    ASSERT_TRUE(waitUntil([this] { return menu.activeAction() == menu.actions().at(0); }));
    FakeInput::release();
    EXPECT_TRUE(waitUntil([&] { return chosen == menu.actions().at(0); }));
    EXPECT_TRUE(waitUntil([this] { return closed == 1; }));
}

TEST_F(StatusItemMenuTest, StaysOpenWhenALongPressEndsOnTheItem)
{
    FakeInput::moveTo(qtPlace(item).center());
    FakeInput::press();
    ASSERT_TRUE(waitUntil([this] { return menu.isVisible(); }));
    settleEvents();
    FakeInput::release();
    settleEvents();
    EXPECT_TRUE(menu.isVisible());
    // It holds the pointer: a press anywhere else closes it.
    FakeInput::click({200, 600});
    EXPECT_TRUE(waitUntil([this] { return closed == 1; }));
}

TEST_F(StatusItemMenuTest, StaysOpenWhenThePanelDies)
{
    pressToOpen();
    stopPanel();
    ASSERT_TRUE(waitUntil([this] { return !item.frame(); }));
    EXPECT_TRUE(menu.isVisible());
    EXPECT_TRUE(waitUntil([this] { return qtPlace(item) == usualStrip; }));
    FakeInput::click({400, 600});
    EXPECT_TRUE(waitUntil([this] { return closed == 1; }));
}

TEST_F(StatusItemMenuTest, OpensOnlyOnceForTwoPressesInOneTurn)
{
    // Both presses wait in the queue while the event loop does not run.
    const int interval = QApplication::doubleClickInterval();
    QApplication::setDoubleClickInterval(0);
    FakeInput::click(qtPlace(item).center());
    FakeInput::click(qtPlace(item).center());
    EXPECT_TRUE(waitUntil([this] { return closed == 1; }));
    QApplication::setDoubleClickInterval(interval);
    settleEvents();
    EXPECT_EQ(opened, 1);
    EXPECT_FALSE(menu.isVisible());
}

TEST_F(StatusItemMenuTest, StaysOpenWhenTwoPressesInOneTurnAreADoubleClick)
{
    FakeInput::click(qtPlace(item).center());
    FakeInput::click(qtPlace(item).center());
    ASSERT_TRUE(waitUntil([this] { return opened == 1; }));
    settleEvents();
    EXPECT_EQ(opened, 1);
    EXPECT_TRUE(menu.isVisible());
    menu.close();
}

TEST_F(StatusItemTest, StandsAloneAtOnceWhereNoTrayIs)
{
    StatusItem item;
    item.setImage(iconOf(Qt::red));
    EXPECT_EQ(qtPlace(item), usualStrip);
    EXPECT_TRUE(waitUntil([] { return screenColour({1109, 11}) == QColor(Qt::red); }));
    item.setImage(QIcon());
    EXPECT_TRUE(waitUntil([] {
        return screenColour({1109, 11}) == QGuiApplication::palette().color(QPalette::Window);
    })) << "its own plate";
    QApplication::setPalette(QPalette(Qt::darkGray));
    EXPECT_TRUE(waitUntil([] { return screenColour({1109, 11}) == QColor(Qt::darkGray); })) << "by the desktop's look";
    QApplication::setPalette(QPalette());
    PressCounter presses(item);
    FakeInput::click(usualStrip.center());
    EXPECT_TRUE(waitUntil([&] { return presses.count == 1; }));
    ASSERT_EQ(itemWindows().size(), 1U);
    EXPECT_EQ(placeOf(itemWindows()[0]), usualStrip);
}

TEST_F(StatusItemTest, StaysAtTheTopWhenTheScreenChangesItsSize)
{
    StatusItem item;
    ASSERT_TRUE(xrandr({QStringLiteral("-s"), QStringLiteral("1024x768")}));
    EXPECT_TRUE(waitUntil([&] { return item.frame() == NSRect{{842, 746}, {22, 22}}; }));
    ASSERT_TRUE(xrandr({QStringLiteral("-s"), QStringLiteral("1280x800")}));
    EXPECT_TRUE(waitUntil([&] { return qtPlace(item) == usualStrip; }));
}

TEST_F(StatusItemTest, SaysWhereItGoesAndWhichTrayThereIs)
{
    using testing::Contains;
    using testing::MatchesRegex;
    StatusItem item;
    LogLines log;
    ASSERT_TRUE(xrandr({QStringLiteral("-s"), QStringLiteral("1024x768")}));
    EXPECT_TRUE(waitUntil([&] { return item.frame() == NSRect{{842, 746}, {22, 22}}; }));
    EXPECT_THAT(log.take(), Contains("kiv.item: the screen has changed: the item goes to (842, 0)"));
    ASSERT_TRUE(xrandr({QStringLiteral("-s"), QStringLiteral("1280x800")}));
    EXPECT_TRUE(waitUntil([&] { return qtPlace(item) == usualStrip; }));

    std::optional<FakeTray> tray(std::in_place, QPoint(100, 50));
    ASSERT_TRUE(waitUntil([&] { return tray->serve(), item.frame() && qtPlace(item) != usualStrip; }));
    EXPECT_THAT(log.take(), Contains(MatchesRegex("kiv.item: there is a new tray, of window 0x[0-9a-f]+")));
    tray.reset();
    EXPECT_TRUE(waitUntil([&] { return qtPlace(item) == usualStrip; }));
    EXPECT_THAT(log.take(), Contains(MatchesRegex("kiv.item: the tray of window 0x[0-9a-f]+ has gone")));
}

TEST_F(StatusItemTest, MovesIntoATrayThatComesLater)
{
    StatusItem item;
    item.setImage(iconOf(Qt::red));
    ASSERT_EQ(qtPlace(item), usualStrip);
    startPanel();
    EXPECT_TRUE(waitUntil([&] { return item.frame() && qtPlace(item) != usualStrip; }));
    ASSERT_EQ(itemWindows().size(), 1U);
    EXPECT_NE(parentOf(itemWindows()[0]), XConnection::screen()->root);
}

TEST_F(StatusItemTest, FollowsTheSelectionFromOneTrayStraightToTheNext)
{
    StatusItem item;
    FakeTray first({100, 50});
    const QRect firstPlace(100, 50, FakeTray::side, FakeTray::side);
    EXPECT_TRUE(waitUntil([&] { return first.serve(), qtPlace(item) == firstPlace; }));
    FakeTray second({300, 60});
    const QRect secondPlace(300, 60, FakeTray::side, FakeTray::side);
    EXPECT_TRUE(waitUntil([&] { return first.serve(), second.serve(), qtPlace(item) == secondPlace; }));
    EXPECT_EQ(itemWindows().size(), 1U);
    EXPECT_EQ(first.icons().size(), 1U);
    EXPECT_EQ(second.icons().size(), 1U);
}

TEST_F(StatusItemTest, StandsAloneForATrayThatDoesNotTakeItIn)
{
    FakeTray tray({100, 100});
    StatusItem item;
    item.setImage(iconOf(Qt::red));
    ASSERT_TRUE(waitUntil([&] { return qtPlace(item) == usualStrip; }, 20s));
    const PressCounter presses(item);
    FakeInput::click(usualStrip.center());
    EXPECT_TRUE(waitUntil([&] { return presses.count == 1; }));

    const std::vector<xcb_window_t> waiting = itemWindows();
    EXPECT_EQ(waiting.size(), 2u) << "one that the tray was asked to take in, and one that stands alone";
    ASSERT_TRUE(waitUntil([&] {
        tray.serve();
        return qtPlace(item) == QRect(100, 100, FakeTray::side, FakeTray::side);
    }));
    EXPECT_TRUE(waitUntil([] { return itemWindows().size() == 1; })) << "it still stands alone, too";
}

TEST_F(StatusItemTest, StandsAloneOnceThereIsAScreenToStandOn)
{
    hasScreen = false;
    const LogLines log;
    StatusItem item;
    EXPECT_EQ(qtPlace(item), QRect());
    hasScreen = true;
    Q_EMIT qGuiApp->primaryScreenChanged(qGuiApp->primaryScreen());
    EXPECT_TRUE(waitUntil([&] { return qtPlace(item) == usualStrip; }));
}

TEST_F(StatusItemTest, StandsAloneForATrayThatDoesNotTakeItInOnceThereIsAScreenToStandOn)
{
    LogLines log;
    const FakeTray tray({100, 100});
    StatusItem item;
    hasScreen = false;
    const std::string waits = "kiv.item: the tray does not take the item in: it waits at the top of the screen";
    ASSERT_TRUE(waitUntil([&] { return std::ranges::count(log.take(), waits) == 1; }, 20s));
    EXPECT_EQ(qtPlace(item), QRect());
    hasScreen = true;
    Q_EMIT qGuiApp->primaryScreenChanged(qGuiApp->primaryScreen());
    EXPECT_TRUE(waitUntil([&] { return qtPlace(item) == usualStrip; }));
}

TEST_F(StatusItemTest, AsksATrayAgainThatHasPutItOut)
{
    StatusItem item;
    FakeTray tray({100, 50});
    ASSERT_TRUE(waitUntil([&] { return tray.serve(), item.frame() && qtPlace(item) != usualStrip; }));
    tray.putOut();
    ASSERT_TRUE(waitUntil([&] { return !item.frame(); }));
    EXPECT_TRUE(waitUntil([&] { return tray.serve(), item.frame().has_value(); }));
    EXPECT_EQ(qtPlace(item), QRect(100, 50, FakeTray::side, FakeTray::side));
}

TEST_F(StatusItemTest, HasNoFrameUntilTheTrayHasTakenItIn)
{
    FakeTray tray({100, 50});
    StatusItem item;
    settleEvents();
    EXPECT_EQ(item.frame(), std::nullopt);
    EXPECT_EQ(item.getWindow(), WId{0});
    EXPECT_EQ(item.getScreen(), nullptr);
    EXPECT_TRUE(waitUntil([&] { return tray.serve(), item.frame().has_value(); }));
    EXPECT_NE(item.getWindow(), WId{0});
    EXPECT_NE(item.getScreen(), nullptr);
}

TEST_F(StatusItemTest, HasNoFrameInATrayOffTheScreenAndIsPressedWhereTheTraySays)
{
    FakeTray tray({-300, 400});
    StatusItem item;
    ASSERT_TRUE(waitUntil([&] { return tray.serve(), tray.icons().size() == 1; }));
    const xcb_window_t icon = tray.icons().front();
    std::vector<std::optional<NSPoint>> places;
    QObject::connect(&item, &StatusItem::pressed, &item,
                     [&](std::optional<NSPoint> place) { places.push_back(place); });
    FakeInput::moveTo({900, 700});
    tray.passPress(icon, {300, 20});
    tray.passPress(icon, {0, 0});
    tray.passKey(icon, FakeInput::keyOf(XK_Return));
    EXPECT_TRUE(waitUntil([&] { return places.size() == 3; }));
    EXPECT_THAT(places, testing::ElementsAre(NSPoint{300, 780}, std::nullopt, NSPoint{900, 100}))
        << "a key: at the mouse";
    EXPECT_EQ(item.frame(), std::nullopt);
    EXPECT_EQ(item.getWindow(), WId{0});
}

TEST_F(StatusItemTest, HasAFrameInATrayThatIsPartlyOffTheScreen)
{
    FakeTray tray({1 - FakeTray::side, 400});
    StatusItem item;
    ASSERT_TRUE(waitUntil([&] { return tray.serve(), item.frame().has_value(); }));
    EXPECT_EQ(item.frame()->origin.x, 1 - FakeTray::side);
    std::vector<std::optional<NSPoint>> places;
    QObject::connect(&item, &StatusItem::pressed, &item,
                     [&](std::optional<NSPoint> place) { places.push_back(place); });
    tray.passPress(tray.icons().front(), {300, 20});
    EXPECT_TRUE(waitUntil([&] { return !places.empty(); }));
    EXPECT_THAT(places, testing::ElementsAre(std::nullopt)) << "the mouse is at its frame";
}

/// The pixel of the item's window, as the server keeps it, alpha included.
std::uint32_t windowPixel(xcb_window_t window, QPoint point)
{
    xcb_connection_t *x = XConnection::get();
    const auto cookie = xcb_get_image(x, XCB_IMAGE_FORMAT_Z_PIXMAP, window, static_cast<std::int16_t>(point.x()),
                                      static_cast<std::int16_t>(point.y()), 1, 1, ~0U);
    const XcbReply<xcb_get_image_reply_t> image(xcb_get_image_reply(x, cookie, nullptr));
    std::uint32_t pixel = 0x12345678;
    if (image && xcb_get_image_data_length(image.get()) >= 4) {
        std::memcpy(&pixel, xcb_get_image_data(image.get()), sizeof pixel);
    }
    return pixel;
}

TEST_F(StatusItemTest, IsTransparentAroundTheIconInATranslucentTray)
{
    StatusItem item;
    item.setImage(iconOf(Qt::red));
    FakeTray tray({100, 50}, FakeTray::Visual::Translucent);
    ASSERT_TRUE(waitUntil([&] { return tray.serve(), item.frame() && qtPlace(item) != usualStrip; }));
    const xcb_window_t window = itemWindows().at(0);
    // The icon of 22 pixels has one pixel of the tray's 24 around it.
    EXPECT_TRUE(waitUntil([&] { return windowPixel(window, {12, 12}) == 0xffff0000; }));
    EXPECT_EQ(windowPixel(window, {0, 0}), 0U);
    EXPECT_EQ(windowPixel(window, {1, 1}), 0xffff0000);
}

TEST_F(StatusItemTest, HasTheTraysBackgroundAroundTheIconInAPlainTray)
{
    StatusItem item;
    QImage half(22, 22, QImage::Format_ARGB32_Premultiplied);
    half.fill(QColor(255, 0, 0, 128));
    item.setImage(QIcon(QPixmap::fromImage(half)));
    FakeTray tray({100, 50});
    ASSERT_TRUE(waitUntil([&] { return tray.serve(), item.frame() && qtPlace(item) != usualStrip; }));
    EXPECT_TRUE(waitUntil([] { return screenColour({112, 62}).red() > 0x9e; }));
    const QColor mixed = screenColour({112, 62});
    EXPECT_NEAR(mixed.red(), (255 + 0x40) / 2.0, 2);
    EXPECT_NEAR(mixed.green(), 0x80 / 2.0, 2);
    EXPECT_NEAR(mixed.blue(), 0xc0 / 2.0, 2);
    EXPECT_EQ(screenColour({100, 50}), QColor(0x40, 0x80, 0xc0));
}

TEST_F(StatusItemTest, LeavesNothingBehindAfterManyRounds)
{
    for (int round = 0; round < 20; ++round) {
        StatusItem item;
        ASSERT_EQ(itemWindows().size(), 1U);
    }
    EXPECT_TRUE(itemWindows().empty());
    startPanel();
    for (int round = 0; round < 20; ++round) {
        StatusItem item;
        ASSERT_TRUE(waitUntil([&] { return item.frame().has_value(); })) << "round " << round;
        ASSERT_EQ(itemWindows().size(), 1U);
    }
    EXPECT_TRUE(itemWindows().empty());
}

TEST_F(StatusItemTest, MayBeDestroyedByWhoeverItTellsOfAPress)
{
    auto item = std::make_unique<StatusItem>();
    bool done = false;
    QObject::connect(item.get(), &StatusItem::pressed, qGuiApp, [&] {
        item.reset();
        // The loop of a menu or an alert runs on after that.
        done = waitUntil([] { return itemWindows().empty(); });
    });
    FakeInput::click(usualStrip.center());
    EXPECT_TRUE(waitUntil([&] { return done; }));
}

TEST_F(StatusItemTest, ShowsItsToolTipUnderTheMouse)
{
    StatusItem item;
    item.setToolTip(QStringLiteral("Kivune Menu"));
    FakeInput::moveTo(usualStrip.center());
    EXPECT_TRUE(waitUntil([] { return QToolTip::isVisible() && QToolTip::text() == QLatin1String("Kivune Menu"); }));
    FakeInput::moveTo({640, 400});
    EXPECT_TRUE(waitUntil([] { return !QToolTip::isVisible(); }));
}

} // namespace
