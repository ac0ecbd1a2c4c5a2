#include "platform/linux/item/TrayHostWatch.h"

#include "platform/LogCategories.h"
#include "platform/linux/include/ExecutableName.h"
#include "platform/linux/include/ProcessOfWindow.h"
#include "platform/linux/include/XConnection.h"

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
    , m_selection(XConnection::traySelection(), [this](xcb_window_t owner) { handleOwner(owner); })
{
    setTray(m_selection.firstOwner());
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
