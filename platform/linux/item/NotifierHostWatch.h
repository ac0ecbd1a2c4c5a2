#pragma once

#include "platform/linux/include/SessionBus.h"

#include <QObject>
#include <QString>

#include <memory>

class QDBusPendingCallWatcher;
class QDBusServiceWatcher;

/// Watches whether StatusNotifierItems are shown on this display. They are when the session bus has a watcher, the
/// watcher has a host, and one of the two belongs to this display: two sessions of a user may share a bus, and the item
/// must not appear in the panel of the other session. Hears of every change from the bus, and never polls. Main thread
/// only.
class NotifierHostWatch final : public QObject
{
    Q_OBJECT

public:
    /// `bus` must outlive this object.
    explicit NotifierHostWatch(SessionBus &bus);
    ~NotifierHostWatch() override;

    /// The unique name of that watcher; empty when there is none.
    [[nodiscard]] const QString &watcher() const noexcept { return m_watcher; }
    /// Whether a watcher has been found that has not said yet whether it has a host. changed() follows its answer.
    [[nodiscard]] bool isAsking() const noexcept { return m_question != nullptr; }

Q_SIGNALS:
    /// The watcher has changed, from one owner to the next included; or it has answered, whatever the answer. From the
    /// event loop.
    void changed();

private Q_SLOTS:
    void ask();

private:
    void watchBus();
    void leaveBus();
    void follow(const QString &owner);
    void hearOfHosts(bool hear);
    void hearAnswer();
    [[nodiscard]] bool isForThisDisplay() const;

    SessionBus &m_bus;
    std::unique_ptr<QDBusServiceWatcher> m_busWatcher;
    QString m_owner;   ///< Of the watcher's name, whatever it has to say.
    QString m_watcher; ///< The same if it counts.
    std::unique_ptr<QDBusPendingCallWatcher> m_question;
};
