#pragma once

#include "tests/support/BusPeer.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QVariantMap>

/// What says on a session bus whether there is a screen reader, org.a11y.Bus: yes or no, or nothing at all. It notes
/// who wants to know the accessibility bus's address, and knows none.
class FakeScreenReader final : public QDBusVirtualObject
{
public:
    explicit FakeScreenReader(const PrivateBus &bus)
        : m_peer(bus)
    {
    }

    /// Comes to the bus. False when it cannot.
    bool come()
    {
        return m_peer.connection().registerVirtualObject(path(), this) &&
               m_peer.connection().registerService(QStringLiteral("org.a11y.Bus"));
    }
    void fallSilent() { m_isSilent = true; }
    /// Begins to read, and says so.
    void begin()
    {
        m_isReading = true;
        QDBusMessage news = QDBusMessage::createSignal(path(), QStringLiteral("org.freedesktop.DBus.Properties"),
                                                       QStringLiteral("PropertiesChanged"));
        news.setArguments(
            {QStringLiteral("org.a11y.Status"), QVariantMap{{QStringLiteral("IsEnabled"), true}}, QStringList()});
        m_peer.connection().send(news);
    }

    [[nodiscard]] bool isAsked() const { return m_isAsked; }
    [[nodiscard]] bool isSought() const { return m_isSought; }

    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &question, const QDBusConnection &connection) override
    {
        m_isAsked = true;
        m_isSought = m_isSought || question.member() == QLatin1String("GetAddress");
        if (!m_isSilent && question.member() == QLatin1String("Get")) {
            connection.send(question.createReply(QVariant::fromValue(QDBusVariant(m_isReading))));
        } else if (!m_isSilent && question.member() == QLatin1String("GetAll")) {
            connection.send(question.createReply(QVariantMap{{QStringLiteral("IsEnabled"), m_isReading}}));
        }
        return true;
    }

private:
    static QString path() { return QStringLiteral("/org/a11y/bus"); }

    BusPeer m_peer;
    bool m_isSilent = false;
    bool m_isReading = false;
    bool m_isAsked = false;
    bool m_isSought = false;
};
