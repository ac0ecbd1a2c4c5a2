#pragma once

#include <QDBusConnection>

#include <memory>

class QDBusPendingCallWatcher;
class StatusNotifierItem;

/// An item's presence with one StatusNotifierItem host, for as long as this lives: a bus connection of its own, which
/// serves the item, and which the watcher has been told of. Watchers take an item off when its connection ends, and not
/// all of them for anything else. A watcher that refuses the item is worth a warning. Main thread only.
class NotifierRegistration final
{
public:
    /// `connection` is nobody else's, and ended with this. `watcher` is the unique name of the watcher on its bus.
    /// `item` is served, with its menu, and must outlive this.
    NotifierRegistration(const QDBusConnection &connection, const QString &watcher, StatusNotifierItem &item);
    ~NotifierRegistration();
    NotifierRegistration(const NotifierRegistration &) = delete;
    NotifierRegistration &operator=(const NotifierRegistration &) = delete;

private:
    void hearAnswer();

    QDBusConnection m_connection;
    StatusNotifierItem &m_item;
    std::unique_ptr<QDBusPendingCallWatcher> m_answer;
};
