#pragma once

#include "tests/platform/linux/item/NotifierWatcherObject.h"

#include <QDBusConnection>
#include <QPoint>
#include <QString>
#include <QStringList>
#include <QVariantList>

/// A StatusNotifierItem host of the test's own, and its watcher, on a bus connection of its own. A later one takes the
/// name from an earlier one.
class FakeNotifierHost final
{
public:
    /// Whether there is more than the watcher.
    enum class Host { Registered, Missing };

    /// Returns once the name is owned on the bus at `address`.
    explicit FakeNotifierHost(const QString &address, Host host = Host::Registered);
    ~FakeNotifierHost();
    FakeNotifierHost(const FakeNotifierHost &) = delete;
    FakeNotifierHost &operator=(const FakeNotifierHost &) = delete;

    void setHost(Host host) { m_object.setHostRegistered(host == Host::Registered); }

    /// Answers every item with an error from now on.
    void refuseItems() { m_object.refuseItems(); }

    /// The bus names of the items that have registered and are still there.
    [[nodiscard]] QStringList items() const;
    /// Tells the first item that it was chosen: "Activate" or "ContextMenu". False when it has not answered within a
    /// second.
    [[nodiscard]] bool choose(const QString &member, QPoint place = {10, 10});
    /// Tells the first item's menu that the entry of this number was chosen. False when it has not answered, or with an
    /// error.
    [[nodiscard]] bool chooseEntry(int id);

private:
    [[nodiscard]] bool call(const QString &path, const QString &interface, const QString &member,
                            const QVariantList &arguments);

    const QString m_connectionName;
    NotifierWatcherObject m_object;
    QDBusConnection m_connection;
};
