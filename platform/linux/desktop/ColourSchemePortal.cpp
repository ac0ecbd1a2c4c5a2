#include "platform/linux/desktop/ColourSchemePortal.h"

#include <QDBusReply>
#include <QDBusVariant>

#include <utility>

namespace
{

constexpr QLatin1String portalName("org.freedesktop.portal.Desktop");
constexpr QLatin1String portalPath("/org/freedesktop/portal/desktop");
constexpr QLatin1String settingsInterface("org.freedesktop.portal.Settings");
constexpr QLatin1String appearance("org.freedesktop.appearance");
constexpr QLatin1String colourScheme("color-scheme");

/// Read puts a variant into a variant.
QVariant unwrapped(QVariant value)
{
    while (value.canConvert<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    return value;
}

QDBusMessage questionForTheScheme()
{
    // Not ReadOne, which older portals lack.
    QDBusMessage question =
        QDBusMessage::createMethodCall(portalName, portalPath, settingsInterface, QStringLiteral("Read"));
    question.setArguments({appearance, colourScheme});
    return question;
}

} // namespace

ColourSchemePortal::ColourSchemePortal(SessionBus &bus)
    : m_question(bus, questionForTheScheme(),
                 {settingsInterface, QStringLiteral("SettingChanged"), {appearance, colourScheme}})
{
    connect(&m_question, &StandingQuestion::answered, this, &ColourSchemePortal::hearAnswer);
    connect(&bus, &SessionBus::disconnected, this, [this] { setScheme(ColourScheme::NoPreference); });
}

void ColourSchemePortal::hearAnswer(const QDBusMessage &answer)
{
    const QDBusReply<QDBusVariant> scheme = answer;
    setScheme(scheme.isValid() ? colourSchemeOf(unwrapped(scheme.value().variant()).toUInt())
                               : ColourScheme::NoPreference);
}

void ColourSchemePortal::setScheme(ColourScheme scheme)
{
    if (std::exchange(m_scheme, scheme) != scheme) {
        Q_EMIT changed();
    }
}
