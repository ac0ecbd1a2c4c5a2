#include "tests/platform/linux/item/FakeNotifierHost.h"

#include "tests/support/WaitUntil.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>

#include <gtest/gtest.h>

namespace
{

const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

QString freshName()
{
    static int count = 0;
    return QStringLiteral("notifier host %1").arg(++count);
}

} // namespace

FakeNotifierHost::FakeNotifierHost(const QString &address, Host host)
    : m_connectionName(freshName())
    , m_connection(QDBusConnection::connectToBus(address, m_connectionName))
{
    setHost(host);
    EXPECT_TRUE(m_connection.registerObject(watcherPath, &m_object, QDBusConnection::ExportAllContents));
    EXPECT_TRUE(m_connection.interface()
                    ->registerService(QStringLiteral("org.kde.StatusNotifierWatcher"),
                                      QDBusConnectionInterface::ReplaceExistingService,
                                      QDBusConnectionInterface::AllowReplacement)
                    .isValid());
}

FakeNotifierHost::~FakeNotifierHost()
{
    m_connection.unregisterObject(watcherPath);
    QDBusConnection::disconnectFromBus(m_connectionName);
}

QStringList FakeNotifierHost::items() const
{
    QStringList present;
    const QStringList registered = m_object.items();
    for (const QString &service : registered) {
        if (m_connection.interface()->isServiceRegistered(service)) {
            present.append(service);
        }
    }
    return present;
}

bool FakeNotifierHost::choose(const QString &member, QPoint place)
{
    const QStringList present = items();
    if (present.isEmpty()) {
        return false;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(present.first(), QStringLiteral("/StatusNotifierItem"),
                                                       QStringLiteral("org.kde.StatusNotifierItem"), member);
    call.setArguments({place.x(), place.y()});
    QDBusPendingCallWatcher watcher(m_connection.asyncCall(call));
    return waitUntil([&] { return watcher.isFinished(); }, std::chrono::seconds(1)) && !watcher.isError();
}
