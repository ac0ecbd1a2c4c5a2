#pragma once

#include "tests/support/BusPeer.h"

#include <QDBusMessage>
#include <QDBusVirtualObject>

/// A desktop portal on a bus, which notes that it is asked and answers nothing.
class FakePortal final : public QDBusVirtualObject
{
public:
    explicit FakePortal(const PrivateBus &bus)
        : m_peer(bus)
        , m_isThere(
              m_peer.connection().registerVirtualObject(QStringLiteral("/org/freedesktop/portal/desktop"), this) &&
              m_peer.connection().registerService(QStringLiteral("org.freedesktop.portal.Desktop")))
    {
    }

    [[nodiscard]] bool isThere() const { return m_isThere; }
    [[nodiscard]] bool isAsked() const { return m_isAsked; }

    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &, const QDBusConnection &) override
    {
        m_isAsked = true;
        return false;
    }

private:
    BusPeer m_peer;
    bool m_isThere;
    bool m_isAsked = false;
};
