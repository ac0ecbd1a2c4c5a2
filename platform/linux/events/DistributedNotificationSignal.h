#pragma once

#include "platform/DistributedNotifications.h"

#include <QObject>

class SessionBus;

/// Observes one notification on a bus, again each time that the bus comes back. Main thread only.
class DistributedNotificationSignal final : public QObject, public DistributedNotifications::Observer
{
    Q_OBJECT

public:
    /// `bus` must outlive this object.
    DistributedNotificationSignal(SessionBus &bus, QString name, std::function<void()> callback);
    ~DistributedNotificationSignal() override;

private Q_SLOTS:
    void onPosted();

private:
    void observe();

    SessionBus &m_bus;
    const QString m_name;
    const std::function<void()> m_callback;
};
