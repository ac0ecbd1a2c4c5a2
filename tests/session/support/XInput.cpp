#include "tests/session/support/XInput.h"

#include <gtest/gtest.h>
#include <xcb/xtest.h>

void XInput::move(QPoint to)
{
    fake(XCB_MOTION_NOTIFY, 0, to);
}

void XInput::press()
{
    fake(XCB_BUTTON_PRESS, XCB_BUTTON_INDEX_1);
}

void XInput::release()
{
    fake(XCB_BUTTON_RELEASE, XCB_BUTTON_INDEX_1);
}

void XInput::click(QPoint at)
{
    move(at);
    press();
    release();
}

void XInput::key(xcb_keysym_t symbol, int times)
{
    const xcb_keycode_t code = keycode(symbol);
    ASSERT_NE(code, 0) << "no key for symbol " << symbol;
    for (int i = 0; i < times; ++i) {
        fake(XCB_KEY_PRESS, code);
        fake(XCB_KEY_RELEASE, code);
    }
}

bool XInput::isFree() const
{
    const auto cookie = xcb_grab_pointer(connection(), true, root(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                                         XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
    const XReply<xcb_grab_pointer_reply_t> reply(xcb_grab_pointer_reply(connection(), cookie, nullptr));
    const bool free = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    if (free) {
        xcb_ungrab_pointer(connection(), XCB_CURRENT_TIME);
        xcb_flush(connection());
    }
    return free;
}

void XInput::holdServer()
{
    xcb_grab_server(connection());
    waitForServer();
}

void XInput::letServerGo()
{
    // First everybody is told of what the user has done meanwhile.
    waitForServer();
    xcb_ungrab_server(connection());
    waitForServer();
}

void XInput::waitForServer() const
{
    const auto cookie = xcb_get_input_focus(connection());
    const XReply<xcb_get_input_focus_reply_t> reply(xcb_get_input_focus_reply(connection(), cookie, nullptr));
}

void XInput::fake(std::uint8_t type, std::uint8_t detail, QPoint position)
{
    xcb_test_fake_input(connection(), type, detail, XCB_CURRENT_TIME, root(), static_cast<std::int16_t>(position.x()),
                        static_cast<std::int16_t>(position.y()), 0);
    xcb_flush(connection());
}

xcb_keycode_t XInput::keycode(xcb_keysym_t symbol) const
{
    const xcb_setup_t *setup = xcb_get_setup(connection());
    const int count = setup->max_keycode - setup->min_keycode + 1;
    const auto cookie = xcb_get_keyboard_mapping(connection(), setup->min_keycode, static_cast<std::uint8_t>(count));
    const XReply<xcb_get_keyboard_mapping_reply_t> reply(xcb_get_keyboard_mapping_reply(connection(), cookie, nullptr));
    if (!reply) {
        return 0;
    }
    const xcb_keysym_t *symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
    for (int i = 0; i < count; ++i) {
        // Only the unshifted symbol: nothing here holds a modifier down.
        if (symbols[ptrdiff_t{i} * reply->keysyms_per_keycode] == symbol) {
            return static_cast<xcb_keycode_t>(setup->min_keycode + i);
        }
    }
    return 0;
}
