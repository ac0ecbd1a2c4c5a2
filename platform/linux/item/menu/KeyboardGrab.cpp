#include "platform/linux/item/menu/KeyboardGrab.h"

#include "platform/linux/include/XConnection.h"

#include <QApplication>
#include <QTimer>

#include <chrono>

namespace
{

using namespace std::chrono_literals;
constexpr std::chrono::milliseconds interval = 20ms;
constexpr int maxTries = 100;

/// There is no other way to learn it than to try.
bool isKeyboardFree()
{
    xcb_connection_t *x = XConnection::get();
    const auto cookie = xcb_grab_keyboard(x, false, XConnection::screen()->root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                                          XCB_GRAB_MODE_ASYNC);
    const XcbReply<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(x, cookie, nullptr));
    const bool isFree = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    if (isFree) {
        xcb_ungrab_keyboard(x, XCB_CURRENT_TIME);
        xcb_flush(x);
    }
    return isFree;
}

void tryUntilFree(QObject *context, const std::function<void()> &proceed, int triesLeft)
{
    // To try takes it from a menu of ours.
    if (triesLeft == 0 || QApplication::activePopupWidget() || isKeyboardFree()) {
        proceed();
        return;
    }
    QTimer::singleShot(interval, Qt::PreciseTimer, context,
                       [context, proceed, triesLeft] { tryUntilFree(context, proceed, triesLeft - 1); });
}

} // namespace

void whenKeyboardIsFree(QObject *context, std::function<void()> proceed)
{
    QMetaObject::invokeMethod(
        context, [context, proceed = std::move(proceed)] { tryUntilFree(context, proceed, maxTries); },
        Qt::QueuedConnection);
}
