#pragma once

#include "tests/support/PrivateBus.h"

#include <QDBusConnection>

/// One more connection to a bus, as another program has one.
class BusPeer final
{
public:
    explicit BusPeer(const PrivateBus &bus)
        : m_connection(QDBusConnection::connectToBus(bus.address(), freshName()))
    {
    }
    ~BusPeer() { leave(); }
    BusPeer(const BusPeer &) = delete;
    BusPeer &operator=(const BusPeer &) = delete;

    [[nodiscard]] QDBusConnection connection() const { return m_connection; }
    /// ":1.7".
    [[nodiscard]] QString name() const { return m_connection.baseService(); }

    void leave()
    {
        const QString name = m_connection.name();
        m_connection = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(name);
    }

private:
    static QString freshName()
    {
        static int count = 0;
        return QStringLiteral("peer-%1").arg(++count);
    }

    QDBusConnection m_connection;
};
