#include "tests/session/support/HostileClient.h"

#include <gtest/gtest.h>

HostileClient::HostileClient(const PrivateXServer &server)
    : XClient(server)
    , m_window(xcb_generate_id(connection()))
{
    xcb_create_window(connection(), XCB_COPY_FROM_PARENT, m_window, root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
}

QList<xcb_window_t> HostileClient::hiddenWindowsOf(qint64 pid) const
{
    QList<xcb_window_t> found;
    const XReply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection(), xcb_query_tree(connection(), root()), nullptr));
    for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i) {
        const xcb_window_t window = xcb_query_tree_children(tree.get())[i];
        const XReply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(connection(), xcb_get_window_attributes(connection(), window), nullptr));
        if (attributes && attributes->map_state != XCB_MAP_STATE_VIEWABLE && pidOf(window) == pid) {
            found.append(window);
        }
    }
    return found;
}

void HostileClient::destroy(xcb_window_t window)
{
    xcb_destroy_window(connection(), window);
    waitForServer();
}

void HostileClient::takeSelection(const QByteArray &selection)
{
    setOwner(selection, m_window);
}

void HostileClient::giveUpSelection(const QByteArray &selection)
{
    setOwner(selection, XCB_NONE);
}

void HostileClient::setOwner(const QByteArray &selection, xcb_window_t owner)
{
    xcb_set_selection_owner(connection(), owner, atom(selection), XCB_CURRENT_TIME);
    waitForServer();
}

void HostileClient::waitForServer()
{
    const XReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection(), xcb_get_input_focus(connection()), nullptr));
    EXPECT_TRUE(reply);
}
