#include "platform/linux/screen/windows/WindowsOfOthers.h"

#include "platform/linux/include/XConnection.h"
#include "platform/linux/screen/windows/StackingRule.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

namespace
{
int listeners = 0;

/// Who hears of the windows at the root window also hears what is said there to a window manager that has just come or
/// is about to go. Where that is about a window of ours, Qt takes it for said to the window: for a change of focus, or
/// for something to warn of.
bool isForTheWindowManager(const xcb_client_message_event_t &message)
{
    return message.window != XConnection::screen()->root && message.type != XConnection::atom("WM_PROTOCOLS") &&
           message.type != XConnection::atom("_XEMBED");
}
} // namespace

WindowsOfOthers::WindowsOfOthers(QObject &owner, std::function<xcb_window_t()> stayingAbove)
    : QObject(&owner)
    , m_owner(owner)
    , m_window(std::move(stayingAbove))
{
    owner.installEventFilter(this);
    QCoreApplication::instance()->installNativeEventFilter(this);
    if (listeners++ == 0) {
        XConnection::hearOfRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY, true);
    }
}

WindowsOfOthers::~WindowsOfOthers()
{
    stopHearing();
}

void WindowsOfOthers::stopHearing()
{
    if (std::exchange(m_hears, false) && --listeners == 0) {
        XConnection::hearOfRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY, false);
    }
}

bool WindowsOfOthers::areManaged()
{
    return XConnection::selectionOwner(managersSelection()) != XCB_NONE;
}

QByteArray WindowsOfOthers::managersSelection()
{
    return "WM_S" + QByteArray::number(XConnection::screenNumber());
}

bool WindowsOfOthers::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == &m_owner && event->type() == QEvent::Hide) {
        stopHearing();
        deleteLater();
    }
    return false;
}

bool WindowsOfOthers::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    if (!m_hears) {
        return false;
    }
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if (XConnection::eventType(*event) == XCB_MAP_NOTIFY) {
        const auto *map = reinterpret_cast<const xcb_map_notify_event_t *>(event);
        if (map->event == XConnection::screen()->root && map->override_redirect == 0) {
            riseAboveWindowsOfOthers(m_window());
        }
    }
    return XConnection::eventType(*event) == XCB_CLIENT_MESSAGE &&
           isForTheWindowManager(*reinterpret_cast<const xcb_client_message_event_t *>(event));
}
