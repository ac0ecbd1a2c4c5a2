#include "platform/linux/item/TrayProtocol.h"

#include "platform/linux/include/XConnection.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace
{

constexpr std::uint32_t systemTrayRequestDock = 0;
constexpr std::uint32_t xembedVersion = 0;
constexpr std::uint32_t xembedMapped = 1;

// Messages of XEmbed.
constexpr std::uint32_t xembedFocusIn = 4;
constexpr std::uint32_t xembedFocusOut = 5;
constexpr std::uint32_t xembedFocusNext = 6;
constexpr std::uint32_t xembedFocusPrevious = 7;

/// The receiver may have gone; that is no error worth Qt's log.
void sendMessage(const xcb_client_message_event_t &message)
{
    xcb_connection_t *x = XConnection::get();
    const xcb_void_cookie_t cookie = xcb_send_event_checked(x, false, message.window, XCB_EVENT_MASK_NO_EVENT,
                                                            reinterpret_cast<const char *>(&message));
    xcb_discard_reply(x, cookie.sequence);
    xcb_flush(x);
}

} // namespace

namespace TrayProtocol
{

std::optional<XVisual> visualOf(xcb_window_t tray)
{
    xcb_connection_t *x = XConnection::get();
    xcb_screen_t *screen = XConnection::screen();
    const auto cookie =
        xcb_get_property(x, false, tray, XConnection::atom("_NET_SYSTEM_TRAY_VISUAL"), XCB_ATOM_VISUALID, 0, 1);
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x, cookie, nullptr));
    xcb_visualid_t id = screen->root_visual;
    if (reply && reply->format == 32 && xcb_get_property_value_length(reply.get()) == sizeof id) {
        std::memcpy(&id, xcb_get_property_value(reply.get()), sizeof id);
    }
    return findVisual(screen, id);
}

void requestDock(xcb_window_t tray, xcb_window_t window, QSize size)
{
    xcb_connection_t *x = XConnection::get();
    const std::array<std::uint32_t, 2> info = {xembedVersion, xembedMapped};
    const xcb_atom_t infoAtom = XConnection::atom("_XEMBED_INFO");
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, window, infoAtom, infoAtom, 32, info.size(), info.data());

    // Trays made with a toolkit ask for the least size and take a window without one for a single pixel.
    std::array<std::uint32_t, 18> hints = {};
    constexpr std::uint32_t hasMinimumSize = 1U << 4U;
    hints[0] = hasMinimumSize;
    hints[5] = static_cast<std::uint32_t>(size.width());
    hints[6] = static_cast<std::uint32_t>(size.height());
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 32,
                        hints.size(), hints.data());

    xcb_client_message_event_t request = {};
    request.response_type = XCB_CLIENT_MESSAGE;
    request.format = 32;
    request.window = tray;
    request.type = XConnection::atom("_NET_SYSTEM_TRAY_OPCODE");
    request.data.data32[0] = XCB_CURRENT_TIME;
    request.data.data32[1] = systemTrayRequestDock;
    request.data.data32[2] = window;
    sendMessage(request);
}

std::optional<bool> focusTold(const xcb_client_message_event_t &message)
{
    if (message.type != XConnection::atom("_XEMBED") || message.format != 32) {
        return std::nullopt;
    }
    switch (message.data.data32[1]) {
    case xembedFocusIn:
        return true;
    case xembedFocusOut:
        return false;
    default:
        return std::nullopt;
    }
}

void passFocus(xcb_window_t embedder, FocusTo to)
{
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = embedder;
    message.type = XConnection::atom("_XEMBED");
    message.data.data32[0] = XCB_CURRENT_TIME;
    message.data.data32[1] = to == FocusTo::Next ? xembedFocusNext : xembedFocusPrevious;
    sendMessage(message);
}

} // namespace TrayProtocol
