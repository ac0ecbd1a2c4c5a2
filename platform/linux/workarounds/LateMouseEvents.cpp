#include "platform/linux/workarounds/LateMouseEvents.h"

#include "platform/linux/include/XConnection.h"

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

void LateMouseEvents::keepFromQt()
{
    if (xcb_connection_t *x = XConnection::get()) {
        // Qt takes the mouse from this extension where there is one, and has asked for it already.
        const xcb_query_extension_reply_t *extension = xcb_get_extension_data(x, &xcb_input_id);
        new LateMouseEvents(QCoreApplication::instance(),
                            extension && extension->present ? extension->major_opcode : 0);
    }
}

LateMouseEvents::LateMouseEvents(QObject *parent, std::uint8_t inputExtension)
    : QObject(parent)
    , m_inputExtension(inputExtension)
{
    QCoreApplication::instance()->installNativeEventFilter(this);
}

bool LateMouseEvents::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const std::optional<xcb_window_t> window = windowOf(static_cast<const xcb_generic_event_t *>(message));
    return window && isHiddenWindowOfQt(*window);
}

std::optional<xcb_window_t> LateMouseEvents::windowOf(const xcb_generic_event_t *event) const
{
    // Presses and moves are laid out alike, in the core protocol and in the extension.
    switch (XConnection::eventType(*event)) {
    case XCB_BUTTON_PRESS:
    case XCB_MOTION_NOTIFY:
        return reinterpret_cast<const xcb_button_press_event_t *>(event)->event;
    case XCB_GE_GENERIC: {
        const auto *input = reinterpret_cast<const xcb_input_button_press_event_t *>(event);
        const bool isOfTheMouse = input->event_type == XCB_INPUT_BUTTON_PRESS || input->event_type == XCB_INPUT_MOTION;
        return input->extension == m_inputExtension && isOfTheMouse ? std::optional(input->event) : std::nullopt;
    }
    default:
        return std::nullopt;
    }
}
