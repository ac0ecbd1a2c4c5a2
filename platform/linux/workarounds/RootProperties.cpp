#include "platform/linux/workarounds/RootProperties.h"

#include "platform/linux/include/XConnection.h"

#include <QEvent>
#include <QGuiApplication>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace
{
constexpr char supported[] = "_NET_SUPPORTED";
constexpr char workArea[] = "_NET_WORKAREA";

QPointer<RootProperties> theInstance;

bool isAnythingShown()
{
    const QWindowList windows = QGuiApplication::allWindows();
    return std::any_of(windows.cbegin(), windows.cend(), [](const QWindow *window) { return window->isVisible(); });
}
} // namespace

void RootProperties::hearOnlyWhileShown()
{
    if (!theInstance && XConnection::get()) {
        theInstance = new RootProperties(QCoreApplication::instance());
    }
}

void RootProperties::catchUpAndShow(QObject *context, std::function<void()> show)
{
    if (theInstance) {
        theInstance->m_waiting.push_back({context, std::move(show)});
        theInstance->catchUp();
    } else {
        QMetaObject::invokeMethod(context, std::move(show), Qt::QueuedConnection);
    }
}

void RootProperties::hear(QObject *listener)
{
    if (!theInstance) {
        return; // They are heard all the time.
    }
    ++theInstance->m_listeners;
    setHeard(true);
    connect(listener, &QObject::destroyed, theInstance, [instance = theInstance.data()] {
        --instance->m_listeners;
        instance->update();
    });
}

RootProperties::RootProperties(QObject *parent)
    : QObject(parent)
    , m_window([this] { catchUpAgain(); })
{
    parent->installEventFilter(this);
    QCoreApplication::instance()->installNativeEventFilter(this);
    update();
}

RootProperties::~RootProperties() = default;

bool RootProperties::eventFilter(QObject *watched, QEvent *event)
{
    if (watched->isWindowType()) {
        // Later: a window that comes up need not wait for the server's answer, and one that is closed from inside its
        // own menu is often followed by another at once.
        if (event->type() == QEvent::Show || event->type() == QEvent::Hide) {
            QMetaObject::invokeMethod(this, &RootProperties::update, Qt::QueuedConnection);
        }
    }
    return false;
}

void RootProperties::catchUp()
{
    setHeard(true);
    // Qt reads them again when it hears that they have changed, and has no other way to be told. An event for no mask
    // goes to whoever made the window: nobody else hears these.
    xcb_connection_t *x = XConnection::get();
    for (const char *property : {supported, workArea}) {
        xcb_property_notify_event_t notify = {};
        notify.response_type = XCB_PROPERTY_NOTIFY;
        notify.window = XConnection::screen()->root;
        notify.atom = XConnection::atom(property);
        notify.state = XCB_PROPERTY_NEW_VALUE;
        xcb_send_event(x, false, m_window.id(), XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&notify));
    }
    xcb_flush(x);
}

void RootProperties::catchUpAgain()
{
    // What was sent to the window that was destroyed may never come.
    if (!m_waiting.empty()) {
        catchUp();
    }
}

bool RootProperties::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const auto *event = static_cast<const xcb_property_notify_event_t *>(message);
    const bool isSent = event->response_type == (XCB_PROPERTY_NOTIFY | XConnection::sentBit);
    if (isSent && event->atom == XConnection::atom(workArea)) {
        // The last of the two; and after Qt, which sees it only when the filters have let it pass.
        QMetaObject::invokeMethod(this, &RootProperties::proceed, Qt::QueuedConnection);
    }
    return false;
}

void RootProperties::proceed()
{
    // One by one from the event loop: the first may run a loop of its own, in which the next has its turn.
    for (Waiting &each : std::exchange(m_waiting, {})) {
        if (each.context) {
            QMetaObject::invokeMethod(each.context, std::move(each.show), Qt::QueuedConnection);
        }
    }
    QMetaObject::invokeMethod(this, &RootProperties::update, Qt::QueuedConnection);
}

void RootProperties::update()
{
    setHeard(isAnythingShown() || !m_waiting.empty() || m_listeners > 0);
}

void RootProperties::setHeard(bool heard)
{
    xcb_connection_t *x = XConnection::get();
    const xcb_window_t root = XConnection::screen()->root;
    const auto cookie = xcb_get_window_attributes(x, root);
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(x, cookie, nullptr));
    if (!attributes) {
        return;
    }
    // The rest is what Qt has asked for.
    constexpr std::uint32_t changes = XCB_EVENT_MASK_PROPERTY_CHANGE;
    const std::uint32_t others = attributes->your_event_mask & ~changes;
    const std::uint32_t mask = others | (heard ? changes : 0U);
    if (mask != attributes->your_event_mask) {
        xcb_change_window_attributes(x, root, XCB_CW_EVENT_MASK, &mask);
        xcb_flush(x);
    }
}
