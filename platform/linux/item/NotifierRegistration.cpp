#include "platform/linux/item/NotifierRegistration.h"

#include "platform/linux/include/SessionBus.h"
#include "platform/linux/item/NotifierWatcher.h"

#include <QDBusMessage>

NotifierRegistration::NotifierRegistration(const SessionBus &bus, const QString &watcher, QObject &item)
    : m_connection(bus.connectOnceMore())
{
    // The path that hosts take where they are told a name only.
    m_connection.registerObject(QStringLiteral("/StatusNotifierItem"), &item, QDBusConnection::ExportAdaptors);
    QDBusMessage message = QDBusMessage::createMethodCall(watcher, notifierWatcherPath(), notifierWatcherName(),
                                                          QStringLiteral("RegisterStatusNotifierItem"));
    message.setAutoStartService(false);
    message.setArguments({m_connection.baseService()});
    m_connection.send(message);
}

NotifierRegistration::~NotifierRegistration()
{
    const QString name = m_connection.name();
    m_connection = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(name);
}
