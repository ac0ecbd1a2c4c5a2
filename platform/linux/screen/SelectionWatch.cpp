#include "platform/linux/screen/SelectionWatch.h"

#include "platform/linux/include/XConnection.h"

#include <QCoreApplication>

#include <xcb/xfixes.h>

#include <utility>

SelectionWatch::SelectionWatch(QByteArray selection, std::function<void(xcb_window_t)> changed)
    : m_selection(std::move(selection))
    , m_changed(std::move(changed))
{
    xcb_connection_t *x = XConnection::get();
    const xcb_query_extension_reply_t *xfixes = x ? XConnection::extension(x, xcb_xfixes_id) : nullptr;
    if (!xfixes) {
        return;
    }
    const auto versionCookie = xcb_xfixes_query_version(x, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
    const XcbReply<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(x, versionCookie, nullptr));
    m_selectionNotify = xfixes->first_event + XCB_XFIXES_SELECTION_NOTIFY;
    m_window.emplace([this] { m_changed(watch()); });
    QCoreApplication::instance()->installNativeEventFilter(this);
    m_firstOwner = watch();
}

xcb_window_t SelectionWatch::watch()
{
    xcb_xfixes_select_selection_input(XConnection::get(), m_window->id(), XConnection::atom(m_selection),
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    // After the selecting, so that no change falls between.
    return XConnection::selectionOwner(m_selection);
}

bool SelectionWatch::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if (XConnection::eventType(*event) == m_selectionNotify) {
        const auto *notify = reinterpret_cast<const xcb_xfixes_selection_notify_event_t *>(event);
        if (notify->window == m_window->id()) {
            m_changed(notify->owner);
        }
    }
    return false;
}
