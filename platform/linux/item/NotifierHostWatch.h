#pragma once

#include "platform/linux/include/SessionBus.h"
#include "platform/linux/item/DisplayMembership.h"
#include "platform/linux/item/StatusItemForm.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>

class QDBusPendingCallWatcher;
class QDBusServiceWatcher;

/// Watches whether StatusNotifierItems are shown on this display, and on this one alone. They are when the session bus
/// has a watcher, the watcher has a host, and of watcher and hosts one belongs to this display and none to another: two
/// sessions of a user may share a bus, all hosts of a watcher draw all its items, and the item must not appear in the
/// panel of the other session. A watcher may draw items itself, so it counts as a host; which host is registered with
/// which watcher no bus tells, so all count that have a host's name. Hears of every change from the bus, and polls only
/// where that has stalled. Main thread only.
class NotifierHostWatch final : public QObject
{
    Q_OBJECT

public:
    /// `bus` must outlive this object.
    explicit NotifierHostWatch(SessionBus &bus);
    ~NotifierHostWatch() override;

    /// The unique name of that watcher; empty when there is none.
    [[nodiscard]] const QString &watcher() const noexcept { return m_watcher; }
    /// What hosts there are: ours where there is that watcher.
    [[nodiscard]] NotifierHosts hosts() const noexcept;
    /// Whether a watcher has been found that has not said yet whether it has a host. changed() follows its answer.
    [[nodiscard]] bool isAsking() const noexcept { return m_question != nullptr; }

    /// The watcher counts as none, until it has been asked again in 5 s: nothing more can be told it for now. changed()
    /// follows then.
    void askAgainLater();

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
    [[nodiscard]] DisplayMembership membership() const;

    SessionBus &m_bus;
    std::unique_ptr<QDBusServiceWatcher> m_busWatcher;
    std::unique_ptr<QDBusServiceWatcher> m_hostWatcher;
    QTimer m_retry;
    QString m_owner;         ///< Of the watcher's name, whatever it has to say.
    QString m_watcher;       ///< The same if it counts.
    bool m_isShared = false; ///< It does not count because of another display.
    std::unique_ptr<QDBusPendingCallWatcher> m_question;
};
