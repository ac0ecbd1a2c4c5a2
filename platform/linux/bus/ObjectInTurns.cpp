#include "platform/linux/bus/ObjectInTurns.h"

#include "platform/LogCategories.h"

#include <utility>

namespace
{

/// A call need not name its interface.
bool isOfInterface(const QDBusMessage &message, const QString &interface)
{
    return message.interface().isEmpty() || message.interface() == interface;
}

} // namespace

ObjectInTurns::ObjectInTurns(QString interface, const char *contract, std::size_t maxWaiting)
    : m_interface(std::move(interface))
    , m_contract(contract)
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
    WorkInTurns::Work work = isOfInterface(message, m_interface) ? workFor(message, connection) : nullptr;
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
    if (!isOfInterface(message, QStringLiteral("org.freedesktop.DBus.Introspectable")) ||
        message.member() != QLatin1String("Introspect")) {
        refuse(message, connection, QDBusError::UnknownMethod, QStringLiteral("No such method"));
    } else if (message.isReplyRequired()) {
        connection.send(message.createReply(QString::fromUtf8(m_contract)));
    }
}
