#include "tests/session/support/OtherWindow.h"

#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

#include <iterator>

OtherWindow::OtherWindow(const PrivateXServer &server, const QRect &geometry)
    : XClient(server)
    , m_window(xcb_generate_id(connection()))
    , m_geometry(geometry)
{
    constexpr std::uint32_t events = XCB_EVENT_MASK_KEY_PRESS;
    xcb_create_window(connection(), XCB_COPY_FROM_PARENT, m_window, root(), static_cast<std::int16_t>(geometry.x()),
                      static_cast<std::int16_t>(geometry.y()), static_cast<std::uint16_t>(geometry.width()),
                      static_cast<std::uint16_t>(geometry.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    const bool shown = waitUntil([this] {
        // Not just once: a window manager that has only just started loses it.
        raise();
        xcb_map_window(connection(), m_window);
        const XReply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(connection(), xcb_get_window_attributes(connection(), m_window), nullptr));
        return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    });
    EXPECT_TRUE(shown) << "a window does not show";
}

void OtherWindow::raise()
{
    constexpr std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(connection(), m_window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    waitForServer();
}

void OtherWindow::keepOthersBelow(std::uint32_t pixels)
{
    // The depths at the left, right, top and bottom, and where each begins and ends.
    const auto left = static_cast<std::uint32_t>(m_geometry.left());
    const auto right = static_cast<std::uint32_t>(m_geometry.right());
    const std::uint32_t strut[] = {0, 0, pixels, 0, 0, 0, 0, 0, left, right, 0, 0};
    xcb_change_property(connection(), XCB_PROP_MODE_REPLACE, m_window, atom("_NET_WM_STRUT_PARTIAL"), XCB_ATOM_CARDINAL,
                        32, std::size(strut), strut);
    waitForServer();
}

void OtherWindow::takeKeyboard()
{
    xcb_set_input_focus(connection(), XCB_INPUT_FOCUS_PARENT, m_window, XCB_CURRENT_TIME);
    waitForServer();
}

int OtherWindow::keysHeard()
{
    waitForServer();
    while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(connection())}) {
        m_keysHeard += event->response_type == XCB_KEY_PRESS ? 1 : 0;
    }
    return m_keysHeard;
}

bool OtherWindow::canHoldKeyboard()
{
    const auto cookie =
        xcb_grab_keyboard(connection(), true, m_window, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const XReply<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(connection(), cookie, nullptr));
    const bool isFree = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    if (isFree) {
        xcb_ungrab_keyboard(connection(), XCB_CURRENT_TIME);
        waitForServer();
    }
    return isFree;
}

void OtherWindow::waitForServer()
{
    const XReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection(), xcb_get_input_focus(connection()), nullptr));
    EXPECT_TRUE(reply);
}
