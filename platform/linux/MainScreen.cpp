#include "platform/MainScreen.h"

#include "platform/linux/MainDisplay.h"
#include "platform/linux/XConnection.h"

namespace MainScreen
{

std::optional<NSRect> frame()
{
    const ScreenCoordinates screen = screenCoordinates();
    if (screen.mainScreen.isEmpty()) {
        return std::nullopt;
    }
    return screen.frame();
}

NSPoint mouseLocation()
{
    // Not QCursor::pos(): outside Qt's own windows it may answer from the last event.
    QPoint device;
    if (xcb_connection_t *x = XConnection::get()) {
        const auto cookie = xcb_query_pointer(x, XConnection::screen()->root);
        if (const XcbReply<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(x, cookie, nullptr)); pointer) {
            device = {pointer->root_x, pointer->root_y};
        }
    }
    return screenCoordinates().fromDevice(device);
}

QPoint toQt(NSPoint point)
{
    return screenCoordinates().toQt(point);
}

NSRect fromQt(const QRect &rect)
{
    return screenCoordinates().fromQt(rect);
}

} // namespace MainScreen
