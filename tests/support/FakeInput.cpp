#include "tests/support/FakeInput.h"

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <cstddef>
#include <cstdlib>

namespace FakeInput
{

namespace
{

xcb_connection_t *connection()
{
    static xcb_connection_t *const own = xcb_connect(nullptr, nullptr);
    return own;
}

void send(std::uint8_t type, std::uint8_t detail, QPoint point)
{
    xcb_connection_t *x = connection();
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
    xcb_test_fake_input(x, type, detail, XCB_CURRENT_TIME, root, static_cast<std::int16_t>(point.x()),
                        static_cast<std::int16_t>(point.y()), 0);
    // A round trip: the server has worked the input off.
    std::free(xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr));
}

} // namespace

void moveTo(QPoint point)
{
    send(XCB_MOTION_NOTIFY, false, point);
}

void press(std::uint8_t button)
{
    send(XCB_BUTTON_PRESS, button, {});
}

void release(std::uint8_t button)
{
    send(XCB_BUTTON_RELEASE, button, {});
}

void click(QPoint point, std::uint8_t button)
{
    moveTo(point);
    press(button);
    release(button);
}

std::uint8_t keyOf(std::uint32_t symbol)
{
    xcb_connection_t *x = connection();
    const xcb_setup_t *setup = xcb_get_setup(x);
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    xcb_get_keyboard_mapping_reply_t *mapping =
        xcb_get_keyboard_mapping_reply(x, xcb_get_keyboard_mapping(x, setup->min_keycode, count), nullptr);
    std::uint8_t key = 0;
    for (int i = 0; mapping && key == 0 && i < count; ++i) {
        if (xcb_get_keyboard_mapping_keysyms(mapping)[static_cast<std::ptrdiff_t>(i) * mapping->keysyms_per_keycode] ==
            symbol) {
            key = static_cast<std::uint8_t>(setup->min_keycode + i);
        }
    }
    std::free(mapping);
    return key;
}

void tapKey(std::uint8_t key)
{
    send(XCB_KEY_PRESS, key, {});
    send(XCB_KEY_RELEASE, key, {});
}

} // namespace FakeInput
