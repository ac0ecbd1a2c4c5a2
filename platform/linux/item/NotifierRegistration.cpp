#include "platform/linux/item/NotifierRegistration.h"

#include "platform/linux/include/SessionBus.h"
#include "platform/linux/item/NotifierWatcher.h"

#include <QDBusMessage>

namespace
{
/// The one that hosts take where they are told a name only.
const QString itemPath = QStringLiteral("/StatusNotifierItem");
} // namespace

NotifierRegistration::NotifierRegistration(const SessionBus &bus, const QString &watcher, QObject &item)
    : m_connection(bus.connectOnceMore())
{
    m_connection.registerObject(itemPath, &item, QDBusConnection::ExportAdaptors);
    QDBusMessage message = QDBusMessage::createMethodCall(watcher, notifierWatcherPath(), notifierWatcherName(),
                                                          QStringLiteral("RegisterStatusNotifierItem"));
    message.setAutoStartService(false);
    message.setArguments({m_connection.baseService()});
    m_connection.send(message);
}

NotifierRegistration::~NotifierRegistration()
{
    m_connection.unregisterObject(itemPath);
    const QString name = m_connection.name();
    m_connection = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(name);
}
