#pragma once

#include "platform/linux/item/StatusItemLook.h"

#include <QObject>
#include <QSystemTrayIcon>

/// The status item with a StatusNotifierItem host, through QSystemTrayIcon. Qt decides once per process, at the first
/// tray icon, which of the two protocols it speaks; so one must not be made before there is such a host. Main thread
/// only.
class SystemTrayStandIn final : public QObject
{
    Q_OBJECT

public:
    SystemTrayStandIn();

    void setLook(const StatusItemLook &look);

Q_SIGNALS:
    /// The host says that the item was chosen. From the event loop: the host's call has been answered.
    void pressed();

private:
    QSystemTrayIcon m_icon;
};
