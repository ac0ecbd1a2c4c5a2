#include "platform/StatusBar.h"

#include "platform/linux/include/MainDisplay.h"
#include "platform/linux/include/XConnection.h"
#include "platform/linux/screen/windows/PanelBar.h"

#include <xcb/randr.h>

namespace
{

/// Asked at once, for the user waits for the menu.
struct Questions {
    xcb_translate_coordinates_cookie_t window;               ///< Which top-level one is at the point.
    std::optional<xcb_randr_get_monitors_cookie_t> monitors; ///< Nothing without RandR.
};

Questions ask(xcb_connection_t *x, QPoint point)
{
    const xcb_window_t root = XConnection::screen()->root;
    Questions questions{.window = xcb_translate_coordinates(x, root, root, static_cast<std::int16_t>(point.x()),
                                                            static_cast<std::int16_t>(point.y())),
                        .monitors = {}};
    if (xcb_get_extension_data(x, &xcb_randr_id)->present) {
        questions.monitors = xcb_randr_get_monitors(x, root, true);
    }
    return questions;
}

/// Of the top-level window at the point; empty where there is none.
QRect windowOf(xcb_connection_t *x, xcb_translate_coordinates_cookie_t question)
{
    const XcbReply<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(x, question, nullptr));
    if (!place || place->child == XCB_NONE) {
        return {};
    }
    const XcbReply<xcb_get_geometry_reply_t> window(
        xcb_get_geometry_reply(x, xcb_get_geometry(x, place->child), nullptr));
    return window ? QRect(window->x, window->y, window->width, window->height) : QRect();
}

/// The monitor with the point on it; empty where there is none.
QRect monitorOf(xcb_connection_t *x, const std::optional<xcb_randr_get_monitors_cookie_t> &question, QPoint point)
{
    const XcbReply<xcb_randr_get_monitors_reply_t> monitors(
        question ? xcb_randr_get_monitors_reply(x, *question, nullptr) : nullptr);
    if (monitors) {
        for (auto it = xcb_randr_get_monitors_monitors_iterator(monitors.get()); it.rem > 0;
             xcb_randr_monitor_info_next(&it)) {
            const QRect monitor(it.data->x, it.data->y, it.data->width, it.data->height);
            if (monitor.contains(point)) {
                return monitor;
            }
        }
    }
    return {};
}

} // namespace

StatusBar StatusBar::around(NSRect item)
{
    xcb_connection_t *x = XConnection::get();
    if (!x) {
        return {};
    }
    const ScreenCoordinates screen = screenCoordinates();
    const QRect device = screen.toDevice(item);
    const QPoint point = device.isEmpty() ? device.topLeft() : device.center();
    // The work area would tell the panel's height too, but only where a window manager publishes it.
    const Questions questions = ask(x, point);
    const QRect window = windowOf(x, questions.window);
    const QRect monitor = monitorOf(x, questions.monitors, point);
    if (monitor.isEmpty() || monitor == screen.mainScreen) {
        return panelBar(window, device, screen.mainScreen, screen.ratio);
    }
    StatusBar bar = panelBar(window, device, monitor, screen.ratio);
    bar.monitor = screen.fromDevice(monitor);
    return bar;
}
