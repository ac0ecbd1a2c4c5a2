#include "platform/linux/item/PressedKey.h"

#include "platform/linux/include/XConnection.h"

namespace
{

// As X11/keysymdef.h has them.
constexpr xcb_keysym_t space = 0x0020;
constexpr xcb_keysym_t tab = 0xff09;
constexpr xcb_keysym_t returnKey = 0xff0d;
constexpr xcb_keysym_t menu = 0xff67;
constexpr xcb_keysym_t keypadSpace = 0xff80;
constexpr xcb_keysym_t keypadEnter = 0xff8d;

xcb_keysym_t firstSymbol(xcb_keycode_t key)
{
    xcb_connection_t *x = XConnection::get();
    const XcbReply<xcb_get_keyboard_mapping_reply_t> mapping(
        xcb_get_keyboard_mapping_reply(x, xcb_get_keyboard_mapping(x, key, 1), nullptr));
    return mapping && xcb_get_keyboard_mapping_keysyms_length(mapping.get()) > 0
               ? xcb_get_keyboard_mapping_keysyms(mapping.get())[0]
               : XCB_NO_SYMBOL;
}

} // namespace

PressedKey pressedKey(const xcb_key_press_event_t &press)
{
    // With these held down it is somebody else's key.
    if (press.state & (XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4)) {
        return PressedKey::Other;
    }
    switch (firstSymbol(press.detail)) {
    case space:
    case returnKey:
    case menu:
    case keypadSpace:
    case keypadEnter:
        return PressedKey::Open;
    case tab:
        return press.state & XCB_MOD_MASK_SHIFT ? PressedKey::Previous : PressedKey::Next;
    default:
        return PressedKey::Other;
    }
}
