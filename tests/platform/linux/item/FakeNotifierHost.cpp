#include "tests/platform/linux/item/FakeNotifierHost.h"

#include "tests/support/WaitUntil.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

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
    return call(QStringLiteral("/StatusNotifierItem"), QStringLiteral("org.kde.StatusNotifierItem"), member,
                {place.x(), place.y()});
}

bool FakeNotifierHost::chooseEntry(int id)
{
    return call(QStringLiteral("/StatusNotifierItem/Menu"), QStringLiteral("com.canonical.dbusmenu"),
                QStringLiteral("Event"),
                {id, QStringLiteral("clicked"), QVariant::fromValue(QDBusVariant(QVariant(0))), QVariant(0U)});
}

bool FakeNotifierHost::call(const QString &path, const QString &interface, const QString &member,
                            const QVariantList &arguments)
{
    const QStringList present = items();
    if (present.isEmpty()) {
        return false;
    }
    QDBusMessage message = QDBusMessage::createMethodCall(present.first(), path, interface, member);
    message.setArguments(arguments);
    QDBusPendingCallWatcher watcher(m_connection.asyncCall(message));
    return waitUntil([&] { return watcher.isFinished(); }, std::chrono::seconds(1)) && !watcher.isError();
}
