#include "platform/Compositor.h"

#include "platform/linux/XConnection.h"

#include <array>
#include <cmath>

namespace Compositor
{

bool isRunning()
{
    return XConnection::selectionOwner("_NET_WM_CM_S" + QByteArray::number(XConnection::screenNumber())) != XCB_NONE;
}

void announceShadow(QWidget &window, int extent)
{
    xcb_connection_t *x = XConnection::get();
    if (!x) {
        return;
    }
    // In device pixels: left, right, top, bottom.
    std::array<std::uint32_t, 4> extents;
    extents.fill(static_cast<std::uint32_t>(std::lround(extent * window.devicePixelRatio())));
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window.winId()),
                        XConnection::atom("_GTK_FRAME_EXTENTS"), XCB_ATOM_CARDINAL, 32, extents.size(), extents.data());
}

} // namespace Compositor
