#pragma once

#include <QDBusConnection>
#include <QMutex>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QThread>

#include <memory>

/// What a StatusNotifierItem host has on the bus: org.kde.StatusNotifierWatcher and its object.
class NotifierWatcherObject final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)

public:
    [[nodiscard]] bool isHostRegistered() const { return true; }
    [[nodiscard]] QStringList items() const;

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString &service);

private:
    mutable QMutex m_mutex;
    QStringList m_items;
};

/// A StatusNotifierItem host of the test's own. It lives in a thread with a bus connection of its own, since the items
/// ask it questions and wait for the answer.
class FakeNotifierHost final
{
public:
    /// Returns once the name is owned on the bus at `address`.
    explicit FakeNotifierHost(const QString &address);
    ~FakeNotifierHost();
    FakeNotifierHost(const FakeNotifierHost &) = delete;
    FakeNotifierHost &operator=(const FakeNotifierHost &) = delete;

    /// The bus names of the items that have registered and are still there.
    [[nodiscard]] QStringList items() const;
    /// Tells the first item that it was chosen. False when it has not answered within a second.
    [[nodiscard]] bool activateFirst();

private:
    const QString m_connectionName;
    std::unique_ptr<NotifierWatcherObject> m_object;
    QThread m_thread;
    QDBusConnection m_connection;
};
