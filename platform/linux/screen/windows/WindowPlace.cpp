#include "platform/linux/screen/windows/WindowPlace.h"

#include "platform/linux/include/XConnection.h"
#include "platform/linux/screen/windows/Monitors.h"

std::optional<WindowPlace> placeOnScreen(xcb_window_t window)
{
    xcb_connection_t *x = XConnection::get();
    const xcb_window_t root = XConnection::screen()->root;
    const auto treeCookie = xcb_query_tree(x, window);
    const auto attributesCookie = xcb_get_window_attributes(x, window);
    const auto geometryCookie = xcb_get_geometry(x, window);
    const auto placeCookie = xcb_translate_coordinates(x, window, root, 0, 0);
    MonitorsQuestion monitors;
    const XcbReply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(x, treeCookie, nullptr));
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(x, attributesCookie, nullptr));
    const XcbReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(x, geometryCookie, nullptr));
    const XcbReply<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(x, placeCookie, nullptr));
    if (!tree || !attributes || !geometry || !place || attributes->map_state != XCB_MAP_STATE_VIEWABLE) {
        return std::nullopt;
    }
    const QRect rect(place->dst_x, place->dst_y, geometry->width, geometry->height);
    return isOnAMonitor(rect, monitors.answer()) ? std::optional(WindowPlace{rect, tree->parent == root})
                                                 : std::nullopt;
}
