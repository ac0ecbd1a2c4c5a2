#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QList>

#include <cstring>

/// The event link's wire format by hand, so that tests prove it without the code that they test.
struct RawParameter {
    QString keyword;
    QString type;
    QByteArray bytes;

    bool operator==(const RawParameter &) const = default;
};

inline QDBusArgument &operator<<(QDBusArgument &argument, const RawParameter &parameter)
{
    argument.beginStructure();
    argument << parameter.keyword << parameter.type << parameter.bytes;
    argument.endStructure();
    return argument;
}

inline const QDBusArgument &operator>>(const QDBusArgument &argument, RawParameter &parameter)
{
    argument.beginStructure();
    argument >> parameter.keyword >> parameter.type >> parameter.bytes;
    argument.endStructure();
    return argument;
}

template <typename T>
QByteArray bytesOf(T value)
{
    return QByteArray(reinterpret_cast<const char *>(&value), sizeof value);
}

/// A call of Send without its arguments.
inline QDBusMessage rawCall(const QString &busName)
{
    qDBusRegisterMetaType<RawParameter>();
    qDBusRegisterMetaType<QList<RawParameter>>();
    return QDBusMessage::createMethodCall(busName, QStringLiteral("/com/tamborel/kivune/AppleEvents"),
                                          QStringLiteral("com.tamborel.kivune.AppleEvents"), QStringLiteral("Send"));
}

inline QDBusMessage rawEvent(const QString &busName, const QString &eventClass, const QString &eventID,
                             const QList<RawParameter> &parameters = {})
{
    QDBusMessage message = rawCall(busName);
    message << eventClass << eventID << QVariant::fromValue(parameters);
    return message;
}
