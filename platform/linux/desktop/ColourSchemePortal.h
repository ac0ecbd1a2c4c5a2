#pragma once

#include "platform/linux/desktop/DesktopRules.h"
#include "platform/linux/include/SessionBus.h"

#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QObject>

#include <memory>

/// Asks the desktop's portal whether the user wants light or dark (org.freedesktop.portal.Settings, the namespace
/// org.freedesktop.appearance), and hears of each change. Never starts a portal, and never waits for one: until it has
/// answered there is no preference. Asks again when it comes, is replaced, or the bus is back. Main thread only.
class ColourSchemePortal final : public QObject
{
    Q_OBJECT

public:
    explicit ColourSchemePortal(SessionBus &bus);

    [[nodiscard]] ColourScheme scheme() const noexcept { return m_scheme; }

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void ask();

private:
    void watchBus();
    void leaveBus();
    void hearAnswer();
    void setScheme(ColourScheme scheme);

    SessionBus &m_bus;
    std::unique_ptr<QDBusServiceWatcher> m_presence;
    std::unique_ptr<QDBusPendingCallWatcher> m_question;
    ColourScheme m_scheme = ColourScheme::NoPreference;
};
