#pragma once

#include "platform/linux/include/SessionBus.h"

#include <QObject>
#include <QString>

#include <memory>

class QDBusPendingCallWatcher;
class QDBusServiceWatcher;

/// Watches whether StatusNotifierItems are shown on this display: whether the session bus has a watcher, which has a
/// host, and one of the two belongs to this display. Two sessions of a user share a bus, and the panel of the one is no
/// place for the item of the other. Learns of every change from the bus, and asks nobody in between. Main thread only.
class NotifierHostWatch final : public QObject
{
    Q_OBJECT

public:
    /// `bus` must outlive this object.
    explicit NotifierHostWatch(SessionBus &bus);
    ~NotifierHostWatch() override;

    /// The unique name of that watcher; empty when there is none.
    [[nodiscard]] const QString &watcher() const noexcept { return m_watcher; }
    /// Whether a watcher has been found and not yet said if it has a host. Its answer is told by changed().
    [[nodiscard]] bool isAsking() const noexcept { return m_question != nullptr; }

Q_SIGNALS:
    /// The watcher is another than before, also when one owner has followed another directly, or one has answered and
    /// it stays as it was. From the event loop.
    void changed();

private Q_SLOTS:
    void ask();

private:
    void watchBus();
    void leaveBus();
    void follow(const QString &owner);
    void hearOfHosts(bool hear);
    void takeAnswer();
    [[nodiscard]] bool isForThisDisplay() const;

    SessionBus &m_bus;
    std::unique_ptr<QDBusServiceWatcher> m_busWatcher;
    QString m_owner;   ///< Of the watcher's name, whatever it has to say.
    QString m_watcher; ///< The same if it counts.
    std::unique_ptr<QDBusPendingCallWatcher> m_question;
};
