#pragma once

#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>

#include <functional>
#include <sys/types.h>

class SessionBus;

/// The process that received the last event, for as long as it is known, without a question to anybody, to receive
/// more: it runs, and the bus has not said that its name has gone or is another's. Main thread only; needs no event
/// loop.
class KnownReceiver final : public QObject
{
    Q_OBJECT

public:
    /// `bus` must outlive this object.
    explicit KnownReceiver(const SessionBus &bus);

    /// From now on hears what becomes of the bus name of that process, and of no other's. To be called before the bus
    /// is asked who has the name, so that no change falls between.
    void watch(pid_t pid);
    /// The process that is watched has that unique name.
    void set(const QString &uniqueName);
    void forget();

    /// The unique name of that process; null when it is not known, or not any more.
    [[nodiscard]] QString uniqueNameOf(pid_t pid);

private:
    const SessionBus &m_bus;
    QDBusServiceWatcher m_watcher;
    pid_t m_pid = 0;
    QString m_uniqueName;
    std::function<bool()> m_hasEnded;
};
