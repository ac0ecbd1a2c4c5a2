#include "platform/StatusBar.h"

#include "platform/linux/include/MainDisplay.h"
#include "platform/linux/include/XConnection.h"
#include "platform/linux/screen/PanelBar.h"

StatusBar StatusBar::at(NSPoint point)
{
    xcb_connection_t *x = XConnection::get();
    if (!x) {
        return {};
    }
    // The work area would tell the panel's height too, but only where a window manager publishes it.
    const ScreenCoordinates screen = screenCoordinates();
    const QPoint device = screen.toDevice(point);
    const xcb_window_t root = XConnection::screen()->root;
    const auto placeCookie = xcb_translate_coordinates(x, root, root, static_cast<std::int16_t>(device.x()),
                                                       static_cast<std::int16_t>(device.y()));
    const XcbReply<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(x, placeCookie, nullptr));
    if (!place || place->child == XCB_NONE) {
        return {};
    }
    const auto geometryCookie = xcb_get_geometry(x, place->child);
    const XcbReply<xcb_get_geometry_reply_t> window(xcb_get_geometry_reply(x, geometryCookie, nullptr));
    if (!window) {
        return {};
    }
    return panelBar(QRect(window->x, window->y, window->width, window->height), screen.mainScreen, screen.ratio);
}
