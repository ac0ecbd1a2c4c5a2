#include "platform/screen/WindowStacking.h"

#include "platform/linux/include/XConnection.h"
#include "tests/support/WaitUntil.h"

#include <QRasterWindow>
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

TEST_F(WindowStacking, HearsOfNoWindowsOnceThePopUpIsGone)
{
    EXPECT_TRUE(rootMask() & XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    const std::uint32_t others = rootMask() & ~XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    popUp.hide();
    EXPECT_TRUE(waitUntil([&] { return rootMask() == others; }));
}

} // namespace
