#pragma once

#include "tests/platform/linux/events/RawEvent.h"
#include "tests/support/BusPeer.h"

#include <QDBusReply>
#include <QDBusVariant>
#include <QVariantMap>

#include <gtest/gtest.h>

#include <cstdint>

/// The service's events by hand: what they are made of, and where they go.
namespace RawCommand
{

/// The command's code has its first character in the number's most significant byte; the number travels in host byte
/// order.
inline RawParameter command(const char *code)
{
    std::uint32_t number = 0;
    for (const char *character = code; *character; ++character) {
        number = number << 8 | static_cast<unsigned char>(*character);
    }
    return {QStringLiteral("mpcm"), QStringLiteral("long"), bytesOf(number)};
}

inline RawParameter sender(qint64 pid)
{
    const std::uint32_t words[] = {0, static_cast<std::uint32_t>(pid)};
    return {QStringLiteral("mpsn"), QStringLiteral("psn "),
            QByteArray(reinterpret_cast<const char *>(words), sizeof words)};
}

inline RawParameter flags(std::uint32_t value)
{
    return {QStringLiteral("mpfl"), QStringLiteral("magn"), bytesOf(value)};
}

inline QString agentName(qint64 pid)
{
    return QStringLiteral("com.tamborel.kivune.p%1").arg(pid);
}

/// An event of the service's class and ID.
inline QDBusMessage event(qint64 agentPid, const QList<RawParameter> &parameters)
{
    return rawEvent(agentName(agentPid), QStringLiteral("kvmc"), QStringLiteral("kvme"), parameters);
}

/// What is no event, but comes to the agent all the same.
inline QDBusMessage settingsAnnounced()
{
    return QDBusMessage::createSignal(QStringLiteral("/"),
                                      QStringLiteral("com.tamborel.kivune.DistributedNotifications"),
                                      QStringLiteral("KivMunuUpdateSettingsNotification"));
}

inline QDBusMessage questionForTheContract(qint64 agentPid)
{
    return QDBusMessage::createMethodCall(agentName(agentPid), QStringLiteral("/com/tamborel/kivune/AppleEvents"),
                                          QStringLiteral("org.freedesktop.DBus.Introspectable"),
                                          QStringLiteral("Introspect"));
}

inline QDBusMessage questionForTheMenusContract(qint64 agentPid)
{
    return QDBusMessage::createMethodCall(agentName(agentPid), QStringLiteral("/com/tamborel/kivune/Menu"),
                                          QStringLiteral("org.freedesktop.DBus.Introspectable"),
                                          QStringLiteral("Introspect"));
}

/// What a screen reader's bus says when there is news of it, but from anybody.
inline QDBusMessage newsOfAScreenReader()
{
    QDBusMessage news =
        QDBusMessage::createSignal(QStringLiteral("/org/a11y/bus"), QStringLiteral("org.freedesktop.DBus.Properties"),
                                   QStringLiteral("PropertiesChanged"));
    news << QStringLiteral("org.a11y.Status") << QVariantMap() << QStringList();
    return news;
}

/// What a desktop's portal says when the user wants light or dark, but from anybody.
inline QDBusMessage newsOfTheColours()
{
    QDBusMessage news =
        QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/portal/desktop"),
                                   QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("SettingChanged"));
    news << QStringLiteral("org.freedesktop.appearance") << QStringLiteral("color-scheme")
         << QVariant::fromValue(QDBusVariant(1U));
    return news;
}

/// Sends such an event and returns the handler's status, once the agent's main thread has answered. It may stand behind
/// thousands of others, and the agent may run under a sanitizer: two minutes.
inline int send(const BusPeer &peer, qint64 agentPid, const QList<RawParameter> &parameters)
{
    const QDBusReply<int> reply = peer.connection().call(event(agentPid, parameters), QDBus::Block, 120'000);
    EXPECT_TRUE(reply.isValid()) << qPrintable(reply.error().message());
    return reply.value();
}

} // namespace RawCommand
