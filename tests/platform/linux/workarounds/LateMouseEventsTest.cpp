#include "platform/linux/workarounds/LateMouseEvents.h"

#include "platform/linux/include/XConnection.h"
#include "tests/session/support/XInput.h"
#include "tests/support/TestXServer.h"
#include "tests/support/WaitUntil.h"

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>
#include <QEvent>
#include <QWindow>

#include <gtest/gtest.h>

namespace
{

/// A window in which the mouse is, and which counts what Qt hands on to it.
class Target final : public QWindow
{
public:
    Target()
    {
        setFlags(Qt::BypassWindowManagerHint);
        setGeometry(100, 100, 100, 100);
        show();
        EXPECT_TRUE(waitUntil([this] { return isExposed(); }));
    }

    int presses = 0;
    int moves = 0;
    int releases = 0;

protected:
    bool event(QEvent *event) override
    {
        const bool isPress = event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
        presses += isPress ? 1 : 0;
        moves += event->type() == QEvent::MouseMove ? 1 : 0;
        releases += event->type() == QEvent::MouseButtonRelease ? 1 : 0;
        return QWindow::event(event);
    }
};

/// Counts the events of the input extension, and of the core protocol's mouse, that come from the X server.
class Arrivals final : private QAbstractNativeEventFilter
{
public:
    Arrivals() { QCoreApplication::instance()->installNativeEventFilter(this); }
    ~Arrivals() override { QCoreApplication::instance()->removeNativeEventFilter(this); }

    int ofTheExtension = 0;
    int ofTheCore = 0;

private:
    bool nativeEventFilter(const QByteArray &, void *message, qintptr *) override
    {
        const int type = XConnection::eventType(*static_cast<const xcb_generic_event_t *>(message));
        ofTheExtension += type == XCB_GE_GENERIC ? 1 : 0;
        ofTheCore += type == XCB_BUTTON_PRESS || type == XCB_MOTION_NOTIFY ? 1 : 0;
        return false;
    }
};

class LateMouseEventsTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { LateMouseEvents::keepFromQt(); }

    void SetUp() override { user.move({150, 150}); }
    void TearDown() override
    {
        user.release();
        EXPECT_TRUE(waitUntil([this] { return user.isFree(); }));
    }

    [[nodiscard]] bool clickReaches(const Target &window)
    {
        user.press();
        user.release();
        return waitUntil([&] { return window.presses > 0 && window.releases > 0; });
    }

    /// Everything that was done before is known to Qt after that.
    static void catchUp() { const Target other; }

    /// An event of the core protocol, as programs send it to one another.
    template <typename Event>
    static void send(std::uint8_t type, xcb_window_t window)
    {
        Event event{};
        event.response_type = type;
        event.detail = XCB_BUTTON_INDEX_1;
        event.root = XConnection::screen()->root;
        event.event = window;
        event.event_x = event.event_y = 50;
        event.same_screen = true;
        xcb_send_event(XConnection::get(), false, window, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char *>(&event));
        xcb_flush(XConnection::get());
    }

    XInput user{testXServer()};
};

TEST_F(LateMouseEventsTest, ReachAWindowThatIsShown)
{
    Target window;
    EXPECT_TRUE(clickReaches(window));
    user.move({160, 160});
    EXPECT_TRUE(waitUntil([&] { return window.moves > 0; }));
}

TEST_F(LateMouseEventsTest, DoNotReachAWindowThatWasHiddenBeforeThePressCame)
{
    Target window;
    const Arrivals arrivals;
    user.holdServer();
    window.hide();
    user.press();
    user.letServerGo();
    catchUp();
    EXPECT_GT(arrivals.ofTheExtension, 0);
    EXPECT_EQ(window.presses, 0);
}

TEST_F(LateMouseEventsTest, DoNotReachAWindowThatWasHiddenWhileTheMouseWasDraggedInIt)
{
    Target window;
    user.press();
    ASSERT_TRUE(waitUntil([&] { return window.presses > 0; }));
    const int before = window.moves;
    const Arrivals arrivals;
    user.holdServer();
    window.hide();
    for (int x = 151; x < 160; ++x) {
        user.move({x, 150});
    }
    user.letServerGo();
    catchUp();
    EXPECT_GT(arrivals.ofTheExtension, 0);
    EXPECT_EQ(window.moves, before);
}

TEST_F(LateMouseEventsTest, OfTheCoreProtocolDoNotReachAHiddenWindowEither)
{
    Target window;
    window.hide();
    const Arrivals arrivals;
    send<xcb_button_press_event_t>(XCB_BUTTON_PRESS, static_cast<xcb_window_t>(window.winId()));
    send<xcb_motion_notify_event_t>(XCB_MOTION_NOTIFY, static_cast<xcb_window_t>(window.winId()));
    EXPECT_TRUE(waitUntil([&] { return arrivals.ofTheCore == 2; }));
    catchUp();
    EXPECT_EQ(window.presses, 0);
    EXPECT_EQ(window.moves, 0);
}

TEST_F(LateMouseEventsTest, ReachAWindowThatWasHiddenAndIsShownAgain)
{
    Target window;
    window.hide();
    ASSERT_TRUE(waitUntil([&] { return !window.isExposed(); }));
    window.show();
    ASSERT_TRUE(waitUntil([&] { return window.isExposed(); }));
    EXPECT_TRUE(clickReaches(window));
}

} // namespace
