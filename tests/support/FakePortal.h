#pragma once

#include "tests/support/BusPeer.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include <optional>

/// A desktop portal on a bus. It says whether the user wants light or dark, once the test has said so, answers nothing
/// else, and notes that it was asked for that. It leaves the bus with this object.
class FakePortal final : public QDBusVirtualObject
{
public:
    explicit FakePortal(const PrivateBus &bus)
        : m_peer(bus)
        , m_isThere(m_peer.connection().registerVirtualObject(path(), this) &&
                    m_peer.connection().registerService(QStringLiteral("org.freedesktop.portal.Desktop")))
    {
    }

    [[nodiscard]] bool isThere() const { return m_isThere; }
    /// For anything but a setting.
    [[nodiscard]] bool isAsked() const { return m_isAsked; }

    /// 0 for no preference, 1 for dark, 2 for light. Tells everybody.
    void setColourScheme(uint scheme)
    {
        m_colourScheme = scheme;
        QDBusMessage signal = QDBusMessage::createSignal(path(), settingsInterface(), QStringLiteral("SettingChanged"));
        signal.setArguments({appearance(), QStringLiteral("color-scheme"), QVariant::fromValue(QDBusVariant(scheme))});
        m_peer.connection().send(signal);
    }

    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        const bool isSetting = message.interface() == settingsInterface() &&
                               message.member() == QLatin1String("Read") &&
                               message.arguments() == QVariantList{appearance(), QStringLiteral("color-scheme")};
        if (isSetting && m_colourScheme) {
            const QDBusVariant inner(*m_colourScheme); // As portals do, in two.
            connection.send(message.createReply(QVariant::fromValue(QDBusVariant(QVariant::fromValue(inner)))));
            return true;
        }
        m_isAsked = m_isAsked || !isSetting;
        return false;
    }

private:
    static QString path() { return QStringLiteral("/org/freedesktop/portal/desktop"); }
    static QString settingsInterface() { return QStringLiteral("org.freedesktop.portal.Settings"); }
    static QString appearance() { return QStringLiteral("org.freedesktop.appearance"); }

    BusPeer m_peer;
    bool m_isThere;
    bool m_isAsked = false;
    std::optional<uint> m_colourScheme;
};
