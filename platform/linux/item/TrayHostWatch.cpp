#include "platform/linux/item/TrayHostWatch.h"

#include "platform/LogCategories.h"
#include "platform/linux/include/ExecutableName.h"
#include "platform/linux/include/ProcessOfWindow.h"
#include "platform/linux/include/XConnection.h"

#include <QCoreApplication>

#include <xcb/xfixes.h>

namespace
{

/// The programs that show X windows as StatusNotifierItems: KDE's, and LXQt's panel, which has the same inside.
bool isNameOfProxy(const QByteArray &program)
{
    return program == "xembedsniproxy" || program == "lxqt-panel";
}

} // namespace

TrayHostWatch::TrayHostWatch(QObject *parent)
    : QObject(parent)
{
    xcb_connection_t *x = XConnection::get();
    const xcb_query_extension_reply_t *xfixes = x ? xcb_get_extension_data(x, &xcb_xfixes_id) : nullptr;
    if (!xfixes || !xfixes->present) {
        return;
    }
    const auto versionCookie = xcb_xfixes_query_version(x, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
    const XcbReply<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(x, versionCookie, nullptr));
    m_selectionNotify = xfixes->first_event + XCB_XFIXES_SELECTION_NOTIFY;
    m_window.emplace([this] { handleOwner(watchSelection()); });
    QCoreApplication::instance()->installNativeEventFilter(this);
    setTray(watchSelection());
}

TrayHostWatch::~TrayHostWatch() = default;

xcb_window_t TrayHostWatch::watchSelection()
{
    xcb_xfixes_select_selection_input(
        XConnection::get(), m_window->id(), XConnection::atom(XConnection::traySelection()),
        XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
            XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    // After the selecting, so that no change falls between.
    return XConnection::selectionOwner(XConnection::traySelection());
}

bool TrayHostWatch::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if (XConnection::eventType(*event) == m_selectionNotify) {
        const auto *notify = reinterpret_cast<const xcb_xfixes_selection_notify_event_t *>(event);
        if (notify->window == m_window->id()) {
            handleOwner(notify->owner);
        }
    }
    return false;
}

void TrayHostWatch::setTray(xcb_window_t owner)
{
    m_tray = owner;
    m_isProxy = owner != XCB_NONE && isNameOfProxy(executableName(processOfWindow(owner)));
}

void TrayHostWatch::handleOwner(xcb_window_t owner)
{
    if (m_tray != owner) {
        if (owner == XCB_NONE) {
            qCDebug(itemLog, "the tray of window 0x%x has gone", m_tray);
        } else {
            qCDebug(itemLog, "there is a new tray, of window 0x%x", owner);
        }
        setTray(owner);
        // Not from inside Qt's event filters, of which the listener adds and removes some.
        QMetaObject::invokeMethod(this, &TrayHostWatch::changed, Qt::QueuedConnection);
    }
}
