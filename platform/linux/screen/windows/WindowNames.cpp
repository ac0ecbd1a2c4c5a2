#include "platform/linux/screen/windows/WindowNames.h"

#include "platform/linux/include/XConnection.h"

namespace
{

void setText(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, const QByteArray &text)
{
    xcb_connection_t *x = XConnection::get();
    const auto cookie = xcb_change_property_checked(x, XCB_PROP_MODE_REPLACE, window, property, type, 8,
                                                    static_cast<std::uint32_t>(text.size()), text.constData());
    xcb_discard_reply(x, cookie.sequence); // An error is not worth Qt's log.
    xcb_flush(x);
}

} // namespace

void setWindowClass(xcb_window_t window, const QByteArray &name)
{
    // Two names, instance and class, each with its zero.
    setText(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, name + '\0' + name + '\0');
}

void setWindowName(xcb_window_t window, const QByteArray &name)
{
    const xcb_atom_t utf8 = XConnection::atom("UTF8_STRING");
    setText(window, XCB_ATOM_WM_NAME, utf8, name);
    setText(window, XConnection::atom("_NET_WM_NAME"), utf8, name);
}
