#include "platform/linux/include/HiddenWindow.h"

#include "platform/linux/include/XConnection.h"

#include <QCoreApplication>

#include <utility>

namespace
{

xcb_window_t makeWindow()
{
    xcb_connection_t *x = XConnection::get();
    const xcb_window_t window = xcb_generate_id(x);
    constexpr std::uint32_t ownEnd = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_create_window(x, XCB_COPY_FROM_PARENT, window, XConnection::screen()->root, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &ownEnd);
    xcb_flush(x);
    return window;
}

} // namespace

HiddenWindow::HiddenWindow(std::function<void()> madeAgain)
    : m_window(makeWindow())
    , m_madeAgain(std::move(madeAgain))
{
    QCoreApplication::instance()->installNativeEventFilter(this);
}

HiddenWindow::~HiddenWindow()
{
    if (xcb_connection_t *x = XConnection::get()) {
        // It may just have been destroyed, which is no error worth Qt's log.
        xcb_discard_reply(x, xcb_destroy_window_checked(x, m_window).sequence);
        xcb_flush(x);
    }
}

bool HiddenWindow::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if (XConnection::eventType(*event) == XCB_DESTROY_NOTIFY &&
        reinterpret_cast<const xcb_destroy_notify_event_t *>(event)->window == m_window) {
        m_window = makeWindow();
        m_madeAgain();
    }
    return false;
}
