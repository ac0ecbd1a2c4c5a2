#pragma once

#include "platform/linux/bus/WorkInTurns.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVirtualObject>

/// An object on the bus that handles what comes to it in turns, so that no flood of it keeps the agent from its user.
/// It has one interface, perhaps with properties, and describes it to who asks; all else is refused. When too much of
/// one sender waits, more of it is refused: with the error LimitsExceeded, or without a word when the sender wants no
/// reply. Main thread only.
class ObjectInTurns : public QDBusVirtualObject
{
public:
    [[nodiscard]] QString introspect(const QString &path) const final;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) final;

protected:
    /// `contract` is the interface's description as XML.
    ObjectInTurns(QString interface, QByteArray contract, std::size_t maxWaiting = WorkInTurns::defaultMaxWaiting);

    /// What is to be done for a call of a method of the interface; empty when it has no such method. Called as soon as
    /// the call comes.
    [[nodiscard]] virtual WorkInTurns::Work workFor(const QDBusMessage &call, const QDBusConnection &connection) = 0;
    /// The same for a call of a method of org.freedesktop.DBus.Properties.
    [[nodiscard]] virtual WorkInTurns::Work workForProperties(const QDBusMessage &call,
                                                              const QDBusConnection &connection);
    [[nodiscard]] const QString &interface() const { return m_interface; }
    /// Whether that is the interface's name; callers may leave it empty.
    [[nodiscard]] bool isOwn(const QString &interface) const;
    static void refuse(const QDBusMessage &message, const QDBusConnection &connection, QDBusError::ErrorType error,
                       const QString &why);

private:
    [[nodiscard]] WorkInTurns::Work workForAny(const QDBusMessage &message, const QDBusConnection &connection);
    void answerOther(const QDBusMessage &message, const QDBusConnection &connection) const;

    const QString m_interface;
    const QByteArray m_contract;
    WorkInTurns m_incoming;
};
