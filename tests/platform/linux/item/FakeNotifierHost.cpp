#include "tests/platform/linux/item/FakeNotifierHost.h"

#include "tests/support/WaitUntil.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QMutexLocker>

#include <gtest/gtest.h>

QStringList NotifierWatcherObject::items() const
{
    const QMutexLocker lock(&m_mutex);
    return m_items;
}

void NotifierWatcherObject::RegisterStatusNotifierItem(const QString &service)
{
    const QMutexLocker lock(&m_mutex);
    m_items.append(service);
}

FakeNotifierHost::FakeNotifierHost(const QString &address)
    : m_connectionName(QStringLiteral("notifier host"))
    , m_object(std::make_unique<NotifierWatcherObject>())
    , m_connection(QDBusConnection::connectToBus(address, m_connectionName))
{
    m_object->moveToThread(&m_thread);
    m_thread.start();
    EXPECT_TRUE(m_connection.registerObject(QStringLiteral("/StatusNotifierWatcher"), m_object.get(),
                                            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties));
    EXPECT_TRUE(m_connection.registerService(QStringLiteral("org.kde.StatusNotifierWatcher")));
}

FakeNotifierHost::~FakeNotifierHost()
{
    m_connection.unregisterObject(QStringLiteral("/StatusNotifierWatcher"));
    QDBusConnection::disconnectFromBus(m_connectionName);
    m_thread.quit();
    m_thread.wait();
}

QStringList FakeNotifierHost::items() const
{
    QStringList present;
    const QStringList registered = m_object->items();
    for (const QString &service : registered) {
        if (m_connection.interface()->isServiceRegistered(service)) {
            present.append(service);
        }
    }
    return present;
}

bool FakeNotifierHost::activateFirst()
{
    const QStringList present = items();
    if (present.isEmpty()) {
        return false;
    }
    QDBusMessage call =
        QDBusMessage::createMethodCall(present.first(), QStringLiteral("/StatusNotifierItem"),
                                       QStringLiteral("org.kde.StatusNotifierItem"), QStringLiteral("Activate"));
    call.setArguments({10, 10});
    QDBusPendingCallWatcher watcher(m_connection.asyncCall(call));
    return waitUntil([&] { return watcher.isFinished(); }, std::chrono::seconds(1)) && !watcher.isError();
}
