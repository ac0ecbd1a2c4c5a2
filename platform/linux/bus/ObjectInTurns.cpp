#include "platform/linux/bus/ObjectInTurns.h"

#include "platform/LogCategories.h"

#include <utility>

ObjectInTurns::ObjectInTurns(QString interface, QByteArray contract, std::size_t maxWaiting)
    : m_interface(std::move(interface))
    , m_contract(std::move(contract))
    , m_incoming(WorkInTurns::defaultMaxShareOfATurn, maxWaiting)
{
}

QString ObjectInTurns::introspect(const QString &) const
{
    return {}; // Qt asks only for messages that handleMessage leaves to it.
}

bool ObjectInTurns::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    // Nothing is left to Qt, which would answer at once, however many questions have come.
    WorkInTurns::Work work = workForAny(message, connection);
    if (!work) {
        work = [this, message, connection] { answerOther(message, connection); };
    }
    // To a blocking call to its own process, Qt wants the answer before this returns.
    if (message.service() == connection.baseService()) {
        work();
    } else if (!m_incoming.carryOut(message.service(), std::move(work))) {
        refuse(message, connection, QDBusError::LimitsExceeded, QStringLiteral("Too many messages wait already"));
    }
    return true;
}

WorkInTurns::Work ObjectInTurns::workForAny(const QDBusMessage &message, const QDBusConnection &connection)
{
    if (message.interface() == QLatin1String("org.freedesktop.DBus.Properties")) {
        return workForProperties(message, connection);
    }
    return isOwn(message.interface()) ? workFor(message, connection) : nullptr;
}

WorkInTurns::Work ObjectInTurns::workForProperties(const QDBusMessage &, const QDBusConnection &)
{
    return {};
}

bool ObjectInTurns::isOwn(const QString &interface) const
{
    return interface.isEmpty() || interface == m_interface;
}

void ObjectInTurns::refuse(const QDBusMessage &message, const QDBusConnection &connection, QDBusError::ErrorType error,
                           const QString &why)
{
    qCDebug(linkLog) << "refused a message of" << message.service() << why;
    if (message.isReplyRequired()) {
        connection.send(message.createErrorReply(error, why));
    }
}

void ObjectInTurns::answerOther(const QDBusMessage &message, const QDBusConnection &connection) const
{
    // A call need not name its interface.
    const bool isForDescription =
        message.interface().isEmpty() || message.interface() == QLatin1String("org.freedesktop.DBus.Introspectable");
    if (!isForDescription || message.member() != QLatin1String("Introspect")) {
        refuse(message, connection, QDBusError::UnknownMethod, QStringLiteral("No such method"));
    } else if (message.isReplyRequired()) {
        connection.send(message.createReply(QString::fromUtf8(m_contract)));
    }
}
