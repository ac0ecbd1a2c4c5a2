#include "platform/MainScreen.h"

#include "platform/linux/include/MainDisplay.h"
#include "platform/linux/include/XConnection.h"

namespace MainScreen
{

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

ScreenCoordinates askWindowSystem()
{
    return screenCoordinates();
}

} // namespace MainScreen
