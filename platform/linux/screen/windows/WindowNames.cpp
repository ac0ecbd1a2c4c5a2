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

XcbReply<xcb_get_property_reply_t> property(xcb_window_t window, const QByteArray &name, xcb_atom_t type)
{
    constexpr std::uint32_t maxUnits = 64; // Of four bytes.
    const auto cookie = xcb_get_property(XConnection::get(), false, window, XConnection::atom(name), type, 0, maxUnits);
    return XcbReply<xcb_get_property_reply_t>(xcb_get_property_reply(XConnection::get(), cookie, nullptr));
}

} // namespace

QByteArray nameOfWindowManager()
{
    const auto check = property(XConnection::screen()->root, "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW);
    if (!check || check->format != 32 || check->value_len == 0) {
        return {};
    }
    const auto window = *static_cast<const xcb_window_t *>(xcb_get_property_value(check.get()));
    const auto name = property(window, "_NET_WM_NAME", XConnection::atom("UTF8_STRING"));
    return name && name->format == 8 ? QByteArray(static_cast<const char *>(xcb_get_property_value(name.get())),
                                                  xcb_get_property_value_length(name.get()))
                                     : QByteArray();
}

bool isWlrootsTheWindowManager()
{
    // A program that was started in such a session for another display names its Wayland display, too.
    return qEnvironmentVariableIsSet("WAYLAND_DISPLAY") && nameOfWindowManager() == "wlroots wm";
}

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
