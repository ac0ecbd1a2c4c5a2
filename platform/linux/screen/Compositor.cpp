#include "platform/Compositor.h"

#include "platform/linux/include/XConnection.h"

#include <array>
#include <cmath>
#include <utility>

namespace Compositor
{

Question::Question()
{
    if (xcb_connection_t *x = XConnection::get()) {
        const QByteArray selection = "_NET_WM_CM_S" + QByteArray::number(XConnection::screenNumber());
        m_request = xcb_get_selection_owner(x, XConnection::atom(selection)).sequence;
        xcb_flush(x);
    }
}

Question::~Question()
{
    if (m_request != 0) {
        xcb_discard_reply(XConnection::get(), m_request);
    }
}

bool Question::isRunning()
{
    if (m_request == 0) {
        return false;
    }
    const xcb_get_selection_owner_cookie_t cookie{std::exchange(m_request, 0U)};
    const XcbReply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(XConnection::get(), cookie, nullptr));
    return owner && owner->owner != XCB_NONE;
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
