#pragma once

#include "platform/DistributedNotifications.h"

#include <QObject>
#include <QTimer>

#include <chrono>

class SessionBus;

/// Observes one notification on a bus, again each time that the bus comes back. Main thread only.
class DistributedNotificationSignal final : public QObject, public DistributedNotifications::Observer
{
    Q_OBJECT

public:
    /// Who posts without end must not keep the agent from its user: what is posted so soon after a call makes one more
    /// call in all, at the end of that time.
    static constexpr std::chrono::milliseconds pauseAfterACall{20};

    /// `bus` must outlive this object.
    DistributedNotificationSignal(SessionBus &bus, QString name, std::function<void()> callback);
    ~DistributedNotificationSignal() override;

private Q_SLOTS:
    void onPosted();

private:
    void observe();
    void tell();

    SessionBus &m_bus;
    const QString m_name;
    const std::function<void()> m_callback;
    QTimer m_pause; ///< Runs since the last call.
    bool m_isPostedAgain = false;
};
