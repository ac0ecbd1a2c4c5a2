#include "platform/linux/workarounds/RootProperties.h"

#include "platform/linux/include/XConnection.h"
#include "tests/support/WaitUntil.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <gtest/gtest.h>

#include <array>

namespace
{

/// Another client of the same X server, such as a window manager.
class OtherClient final
{
public:
    OtherClient()
        : m_connection(xcb_connect(nullptr, nullptr))
    {
    }
    ~OtherClient() { xcb_disconnect(m_connection); }
    OtherClient(const OtherClient &) = delete;
    OtherClient &operator=(const OtherClient &) = delete;

    void setOnRoot(const QByteArray &property, const QList<std::uint32_t> &values)
    {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, root(), XConnection::atom(property), XCB_ATOM_CARDINAL,
                            32, static_cast<std::uint32_t>(values.size()), values.constData());
        waitForServer();
    }

    void setWorkArea(const QRect &area)
    {
        const auto number = [](int value) { return static_cast<std::uint32_t>(value); };
        setOnRoot("_NET_WORKAREA", {number(area.x()), number(area.y()), number(area.width()), number(area.height())});
    }

    /// What Qt wants to see before it believes in a work area.
    void standForWindowManager()
    {
        const std::array<xcb_atom_t, 1> supported = {XConnection::atom("_NET_WORKAREA")};
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, root(), XConnection::atom("_NET_SUPPORTED"),
                            XCB_ATOM_ATOM, 32, 1, supported.data());
        waitForServer();
    }

    void sendTo(xcb_window_t window, xcb_atom_t message)
    {
        xcb_client_message_event_t event = {};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = window;
        event.type = message;
        xcb_send_event(m_connection, false, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&event));
        xcb_flush(m_connection);
    }

private:
    static xcb_window_t root() { return XConnection::screen()->root; }
    /// The server serves each of its clients in order, but not one after the other.
    void waitForServer()
    {
        const XcbReply<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    }

    xcb_connection_t *m_connection;
};

/// Counts what the server tells this program: each change of a property of the root window, and each mark.
class EventCount final : public QAbstractNativeEventFilter
{
public:
    EventCount() { QCoreApplication::instance()->installNativeEventFilter(this); }
    bool nativeEventFilter(const QByteArray &, void *message, qintptr *) override
    {
        const auto *event = static_cast<const xcb_generic_event_t *>(message);
        if (event->response_type == XCB_PROPERTY_NOTIFY) {
            const auto *notify = reinterpret_cast<const xcb_property_notify_event_t *>(event);
            changes += notify->window == XConnection::screen()->root ? 1 : 0;
        }
        if (XConnection::eventType(*event) == XCB_CLIENT_MESSAGE) {
            marks += reinterpret_cast<const xcb_client_message_event_t *>(event)->type == mark ? 1 : 0;
        }
        return false;
    }

    const xcb_atom_t mark = XConnection::atom("_THE_TEST_S_MARK");
    int changes = 0;
    int marks = 0;
};

/// Has more to be known each time that Qt has caught up, as often as that.
class MoreToKnow final : private QAbstractNativeEventFilter
{
public:
    explicit MoreToKnow(int times)
        : m_times(times)
    {
        QCoreApplication::instance()->installNativeEventFilter(this);
    }

    int caughtUp = 0;

private:
    bool nativeEventFilter(const QByteArray &, void *message, qintptr *) override
    {
        const auto *event = static_cast<const xcb_property_notify_event_t *>(message);
        if (event->response_type == (XCB_PROPERTY_NOTIFY | XConnection::sentBit) &&
            event->atom == XConnection::atom("_NET_WORKAREA") && ++caughtUp <= m_times) {
            QMetaObject::invokeMethod(qApp, &RootProperties::catchUpAnew, Qt::QueuedConnection);
        }
        return false;
    }

    const int m_times;
};

class RootPropertiesTest : public testing::Test
{
protected:
    RootPropertiesTest()
    {
        RootProperties::hearOnlyWhileShown();
        m_receiver.create();
    }
    ~RootPropertiesTest() override
    {
        // Items of other tests go by it.
        xcb_delete_property(XConnection::get(), XConnection::screen()->root, XConnection::atom("_NET_WORKAREA"));
        xcb_flush(XConnection::get());
    }

    /// How many changes of the root window this program is told of when another client makes one.
    int heard()
    {
        const int before = m_events.changes;
        m_other.setOnRoot("_THE_TEST_S_PROPERTY", {1});
        // The server tells things in their order, so that what is not there before the mark will not come.
        const int marks = m_events.marks;
        m_other.sendTo(static_cast<xcb_window_t>(m_receiver.winId()), m_events.mark);
        EXPECT_TRUE(waitUntil([&] { return m_events.marks > marks; }));
        return m_events.changes - before;
    }

    OtherClient m_other;

private:
    EventCount m_events;
    QWindow m_receiver;
};

TEST_F(RootPropertiesTest, AreNotHeardWhileNothingIsShown)
{
    EXPECT_EQ(heard(), 0);
}

TEST_F(RootPropertiesTest, AreHeardAsLongAsAWindowIsShown)
{
    QWindow first;
    QWindow second;
    first.show();
    second.show();
    EXPECT_TRUE(waitUntil([this] { return heard() == 1; }));
    first.hide();
    EXPECT_EQ(heard(), 1);
    second.hide();
    EXPECT_TRUE(waitUntil([this] { return heard() == 0; }));
}

TEST_F(RootPropertiesTest, AreHeardBeforeAWindowIsPlacedAndNotAfterIt)
{
    QObject context;
    int calls = 0;
    int heardMeanwhile = 0;
    RootProperties::catchUpAndShow(&context, [&] {
        ++calls;
        heardMeanwhile = heard();
    });
    EXPECT_TRUE(waitUntil([&] { return calls == 1; }));
    EXPECT_EQ(heardMeanwhile, 1);
    EXPECT_EQ(heard(), 0);
}

TEST_F(RootPropertiesTest, BringTheWorkAreaThatHasChangedMeanwhile)
{
    m_other.standForWindowManager();
    const QRect whole = QGuiApplication::primaryScreen()->geometry();
    for (const int height : {30, 50}) {
        const QRect belowThePanel = whole.adjusted(0, height, 0, 0);
        m_other.setWorkArea(belowThePanel);
        QObject context;
        QRect seen;
        RootProperties::catchUpAndShow(&context, [&] { seen = QGuiApplication::primaryScreen()->availableGeometry(); });
        EXPECT_TRUE(waitUntil([&] { return !seen.isNull(); }));
        EXPECT_EQ(seen, belowThePanel);
    }
}

TEST_F(RootPropertiesTest, AreCaughtUpWithAnewWhereMoreIsToBeKnownBeforeAWindowIsShown)
{
    const MoreToKnow more(5);
    QObject context;
    int caughtUp = 0;
    RootProperties::catchUpAndShow(&context, [&] { caughtUp = more.caughtUp; });
    EXPECT_TRUE(waitUntil([&] { return caughtUp > 0; }));
    EXPECT_EQ(caughtUp, 6);
}

TEST_F(RootPropertiesTest, AreOfNoUseToOneThatHasGone)
{
    bool called = false;
    {
        QObject context;
        RootProperties::catchUpAndShow(&context, [&] { called = true; });
    }
    QObject other;
    bool otherCalled = false;
    RootProperties::catchUpAndShow(&other, [&] { otherCalled = true; });
    EXPECT_TRUE(waitUntil([&] { return otherCalled; }));
    EXPECT_FALSE(called);
}

} // namespace
