#include "platform/screen/WindowStacking.h"

#include "platform/linux/include/XConnection.h"
#include "tests/support/WaitUntil.h"

#include <QGuiApplication>
#include <QRasterWindow>
#include <QStringList>
#include <QWidget>

#include <gtest/gtest.h>

namespace
{

/// Which of the two lies in front, as the server has them.
bool isInFront(WId one, WId other)
{
    xcb_connection_t *x = XConnection::get();
    const auto cookie = xcb_query_tree(x, XConnection::screen()->root);
    const XcbReply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(x, cookie, nullptr));
    int placeOfOne = -1;
    int placeOfOther = -1;
    for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i) {
        const xcb_window_t window = xcb_query_tree_children(tree.get())[i];
        placeOfOne = window == one ? i : placeOfOne;
        placeOfOther = window == other ? i : placeOfOther;
    }
    return placeOfOne > placeOfOther;
}

bool isMapped(WId window)
{
    xcb_connection_t *x = XConnection::get();
    const auto cookie = xcb_get_window_attributes(x, static_cast<xcb_window_t>(window));
    const XcbReply<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(x, cookie, nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

std::uint32_t rootMask()
{
    xcb_connection_t *x = XConnection::get();
    const auto cookie = xcb_get_window_attributes(x, XConnection::screen()->root);
    const XcbReply<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(x, cookie, nullptr));
    return reply ? reply->your_event_mask : 0;
}

/// As any client sends it, about a window of another.
void sendMessage(xcb_window_t to, WId about, const char *type, xcb_atom_t what = XCB_ATOM_NONE)
{
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = static_cast<xcb_window_t>(about);
    message.type = XConnection::atom(type);
    message.data.data32[0] = what;
    const std::uint32_t mask = to == XConnection::screen()->root
                                   ? XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT
                                   : XCB_EVENT_MASK_NO_EVENT;
    xcb_send_event(XConnection::get(), false, to, mask, reinterpret_cast<const char *>(&message));
}

/// What Qt has said on standard error while this exists.
class Said final
{
public:
    Said()
    {
        lines.clear();
        m_before = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &line) { lines.append(line); });
    }
    ~Said() { qInstallMessageHandler(m_before); }
    Said(const Said &) = delete;
    Said &operator=(const Said &) = delete;

    static inline QStringList lines;

private:
    QtMessageHandler m_before;
};

/// No window manager runs here.
class WindowStacking : public testing::Test
{
protected:
    WindowStacking()
        : popUp(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint)
    {
        popUp.setGeometry(300, 300, 100, 100);
        popUp.show();
        keepAtStatusLevel(popUp);
    }

    QWidget popUp;
};

TEST_F(WindowStacking, KeepsAPopUpAboveWindowsThatAreMappedLater)
{
    QRasterWindow other;
    other.setGeometry(200, 200, 300, 300);
    other.show();
    EXPECT_TRUE(waitUntil([&] { return isMapped(other.winId()) && isInFront(popUp.winId(), other.winId()); }));
    QRasterWindow next;
    next.setGeometry(200, 200, 300, 300);
    next.show();
    EXPECT_TRUE(waitUntil([&] { return isMapped(next.winId()) && isInFront(popUp.winId(), next.winId()); }));
}

TEST_F(WindowStacking, LeavesAScreenLockerAboveAPopUp)
{
    QRasterWindow locker;
    locker.setFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    locker.setGeometry(0, 0, 1280, 800);
    locker.show();
    // The server tells of what is to be drawn after it has told that the window was mapped.
    ASSERT_TRUE(waitUntil([&] { return locker.isExposed(); }));
    EXPECT_TRUE(isInFront(locker.winId(), popUp.winId()));
}

TEST_F(WindowStacking, LeavesAScreenLockerAboveAPopUpWhateverIsMappedBehindIt)
{
    QRasterWindow older;
    older.setGeometry(200, 200, 300, 300);
    older.show();
    ASSERT_TRUE(waitUntil([&] { return isMapped(older.winId()) && isInFront(popUp.winId(), older.winId()); }));
    const auto window = static_cast<xcb_window_t>(older.winId());
    xcb_unmap_window(XConnection::get(), window);
    constexpr std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(XConnection::get(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    ASSERT_FALSE(isMapped(window));
    QRasterWindow locker;
    locker.setFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    locker.setGeometry(0, 0, 1280, 800);
    locker.show();
    ASSERT_TRUE(waitUntil([&] { return locker.isExposed(); }));
    ASSERT_TRUE(isInFront(window, popUp.winId()));

    xcb_map_window(XConnection::get(), window);
    EXPECT_TRUE(waitUntil([&] { return isMapped(window) && isInFront(popUp.winId(), window); }));
    EXPECT_TRUE(isInFront(locker.winId(), popUp.winId()));
}

TEST_F(WindowStacking, LeavesToAWindowManagerWhatItIsTold)
{
    const Said said;
    int focusChanges = 0;
    QObject::connect(qGuiApp, &QGuiApplication::focusWindowChanged, &popUp, [&] { ++focusChanges; });
    const xcb_window_t root = XConnection::screen()->root;
    sendMessage(root, popUp.winId(), "_KDE_WM_CHANGE_STATE");
    sendMessage(root, popUp.winId(), "_NET_ACTIVE_WINDOW");
    sendMessage(static_cast<xcb_window_t>(popUp.winId()), popUp.winId(), "WM_PROTOCOLS",
                XConnection::atom("WM_DELETE_WINDOW"));
    EXPECT_TRUE(waitUntil([&] { return !popUp.isVisible(); })) << "it is not told what is for it";
    EXPECT_EQ(focusChanges, 0);
    EXPECT_EQ(Said::lines.join(QLatin1Char('\n')).toStdString(), "");
}

TEST_F(WindowStacking, HearsOfNoWindowsOnceThePopUpIsGone)
{
    EXPECT_TRUE(rootMask() & XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    const std::uint32_t others = rootMask() & ~XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    popUp.hide();
    EXPECT_TRUE(waitUntil([&] { return rootMask() == others; }));
}

} // namespace
