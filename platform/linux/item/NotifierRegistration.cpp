#include "platform/linux/item/NotifierRegistration.h"

#include "platform/LogCategories.h"
#include "platform/linux/include/SessionBus.h"
#include "platform/linux/item/NotifierWatcher.h"
#include "platform/linux/item/StatusNotifierItem.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace
{
/// Whether the watcher has gone, or the bus: then there is another host to look for, and nothing has been refused.
bool hasGone(QDBusError::ErrorType error)
{
    return error == QDBusError::ServiceUnknown || isUnanswered(error);
}
} // namespace

NotifierRegistration::NotifierRegistration(const QDBusConnection &connection, const QString &watcher,
                                           StatusNotifierItem &item)
    : m_connection(connection)
    , m_item(item)
{
    m_item.serve(m_connection);
    QDBusMessage message = QDBusMessage::createMethodCall(watcher, notifierWatcherPath(), notifierWatcherName(),
                                                          QStringLiteral("RegisterStatusNotifierItem"));
    message.setAutoStartService(false);
    message.setArguments({m_connection.baseService()});
    m_answer = std::make_unique<QDBusPendingCallWatcher>(m_connection.asyncCall(message));
    QObject::connect(m_answer.get(), &QDBusPendingCallWatcher::finished, m_answer.get(), [this] { hearAnswer(); });
}

void NotifierRegistration::hearAnswer()
{
    const QDBusError error = QDBusPendingReply<>(*m_answer).error();
    if (!error.isValid()) {
        qCDebug(itemLog, "the StatusNotifierItem watcher has taken the item");
    } else if (hasGone(error.type())) {
        qCDebug(itemLog) << "the StatusNotifierItem watcher has not answered for the item:" << error.name();
    } else {
        qCWarning(itemLog) << "the StatusNotifierItem watcher refuses the item:" << error.name() << error.message();
    }
}

NotifierRegistration::~NotifierRegistration()
{
    m_answer.reset();
    m_item.stopServing();
    const QString name = m_connection.name();
    m_connection = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(name);
}
