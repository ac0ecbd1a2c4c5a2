#include "platform/StatusBar.h"

#include "platform/linux/include/MainDisplay.h"
#include "platform/linux/include/XConnection.h"
#include "platform/linux/screen/windows/Monitors.h"
#include "platform/linux/screen/windows/PanelBar.h"
#include "platform/linux/screen/windows/WorkArea.h"

#include <algorithm>

namespace
{

/// Of the top-level window at the point; empty where there is none.
QRect windowAt(xcb_connection_t *x, QPoint point)
{
    const xcb_window_t root = XConnection::screen()->root;
    const auto cookie = xcb_translate_coordinates(x, root, root, static_cast<std::int16_t>(point.x()),
                                                  static_cast<std::int16_t>(point.y()));
    const XcbReply<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(x, cookie, nullptr));
    if (!place || place->child == XCB_NONE) {
        return {};
    }
    const XcbReply<xcb_get_geometry_reply_t> window(
        xcb_get_geometry_reply(x, xcb_get_geometry(x, place->child), nullptr));
    return window ? QRect(window->x, window->y, window->width, window->height) : QRect();
}

} // namespace

StatusBar StatusBar::around(NSRect item)
{
    xcb_connection_t *x = XConnection::get();
    if (!x) {
        return {};
    }
    // Before all that waits for an answer, for the user waits for the menu.
    MonitorsQuestion monitorsQuestion;
    WorkAreaQuestion workArea;
    const ScreenCoordinates screen = screenCoordinates();
    const QRect device = screen.toDevice(item);
    const QPoint point = device.isEmpty() ? device.topLeft() : device.center();
    const QRect window = windowAt(x, point);
    const std::vector<QRect> monitors = monitorsQuestion.answer();
    const auto found = std::ranges::find_if(monitors, [&](const QRect &each) { return each.contains(point); });
    const QRect monitor = found == monitors.end() ? screen.mainScreen : *found;
    // Only a panel that can be seen is there for certain, and the work area may have to be asked of all windows.
    const bool isSeen = monitor.isEmpty() || isPanel(window, monitor);
    StatusBar bar = panelBar(window, device, monitor, isSeen ? std::nullopt : workArea.answer(monitor), screen.ratio);
    if (monitor != screen.mainScreen) {
        bar.monitor = screen.fromDevice(monitor);
    }
    return bar;
}
