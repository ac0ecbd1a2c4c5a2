#pragma once

#include "platform/linux/bus/StandingQuestion.h"
#include "platform/linux/desktop/DesktopRules.h"

#include <QObject>

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

private:
    void hearAnswer(const QDBusMessage &answer);
    void setScheme(ColourScheme scheme);

    StandingQuestion m_question;
    ColourScheme m_scheme = ColourScheme::NoPreference;
};
