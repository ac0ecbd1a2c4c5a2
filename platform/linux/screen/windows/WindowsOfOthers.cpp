#include "platform/linux/screen/windows/WindowsOfOthers.h"

#include "platform/linux/include/XConnection.h"
#include "platform/screen/WindowStacking.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

namespace
{
int listeners = 0;
}

WindowsOfOthers::WindowsOfOthers(QWidget &stayingAbove)
    : QObject(&stayingAbove)
    , m_window(stayingAbove)
{
    stayingAbove.installEventFilter(this);
    QCoreApplication::instance()->installNativeEventFilter(this);
    if (listeners++ == 0) {
        setHeard(true);
    }
}

WindowsOfOthers::~WindowsOfOthers()
{
    stopHearing();
}

void WindowsOfOthers::stopHearing()
{
    if (std::exchange(m_hears, false) && --listeners == 0) {
        setHeard(false);
    }
}

bool WindowsOfOthers::areManaged()
{
    return XConnection::selectionOwner("WM_S" + QByteArray::number(XConnection::screenNumber())) != XCB_NONE;
}

bool WindowsOfOthers::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == &m_window && event->type() == QEvent::Hide) {
        stopHearing();
        deleteLater();
    }
    return false;
}

bool WindowsOfOthers::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if (XConnection::eventType(*event) == XCB_MAP_NOTIFY) {
        const auto *map = reinterpret_cast<const xcb_map_notify_event_t *>(event);
        if (map->event == XConnection::screen()->root && map->override_redirect == 0 && m_hears) {
            bringToFront(m_window);
        }
    }
    return false;
}

void WindowsOfOthers::setHeard(bool heard)
{
    xcb_connection_t *x = XConnection::get();
    const xcb_window_t root = XConnection::screen()->root;
    const auto cookie = xcb_get_window_attributes(x, root);
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(x, cookie, nullptr));
    if (!attributes) {
        return;
    }
    // The rest is what others of this program have asked for.
    constexpr std::uint32_t mappings = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    const std::uint32_t mask = (attributes->your_event_mask & ~mappings) | (heard ? mappings : 0U);
    xcb_change_window_attributes(x, root, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(x);
}
