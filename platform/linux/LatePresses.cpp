#include "LatePresses.h"

#include "platform/linux/XConnection.h"

#include <QGuiApplication>
#include <QWindow>

#include <xcb/xinput.h>

#include <algorithm>

namespace
{

bool isHiddenWindowOfQt(xcb_window_t id)
{
    const QWindowList windows = QGuiApplication::allWindows();
    return std::any_of(windows.cbegin(), windows.cend(), [id](const QWindow *window) {
        // Only with a handle: winId() would else make one.
        return window->handle() && !window->isVisible() && window->winId() == id;
    });
}

} // namespace

void LatePresses::keepFromQt()
{
    if (xcb_connection_t *x = XConnection::get()) {
        // Qt takes the mouse from this extension where there is one, and has asked for it already.
        const xcb_query_extension_reply_t *extension = xcb_get_extension_data(x, &xcb_input_id);
        new LatePresses(QCoreApplication::instance(), extension && extension->present ? extension->major_opcode : 0);
    }
}

LatePresses::LatePresses(QObject *parent, std::uint8_t inputExtension)
    : QObject(parent)
    , m_inputExtension(inputExtension)
{
    QCoreApplication::instance()->installNativeEventFilter(this);
}

bool LatePresses::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const std::optional<xcb_window_t> window = pressedWindow(static_cast<const xcb_generic_event_t *>(message));
    return window && isHiddenWindowOfQt(*window);
}

std::optional<xcb_window_t> LatePresses::pressedWindow(const xcb_generic_event_t *event) const
{
    constexpr std::uint8_t sentBit = 0x80;
    switch (event->response_type & ~sentBit) {
    case XCB_BUTTON_PRESS:
        return reinterpret_cast<const xcb_button_press_event_t *>(event)->event;
    case XCB_GE_GENERIC: {
        const auto *press = reinterpret_cast<const xcb_input_button_press_event_t *>(event);
        if (press->extension == m_inputExtension && press->event_type == XCB_INPUT_BUTTON_PRESS) {
            return press->event;
        }
        return std::nullopt;
    }
    default:
        return std::nullopt;
    }
}
