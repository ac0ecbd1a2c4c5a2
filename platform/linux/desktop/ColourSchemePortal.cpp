#include "platform/linux/desktop/ColourSchemePortal.h"

#include <QDBusPendingReply>
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

} // namespace

ColourSchemePortal::ColourSchemePortal(SessionBus &bus)
    : m_bus(bus)
{
    connect(&m_bus, &SessionBus::connected, this, &ColourSchemePortal::watchBus);
    connect(&m_bus, &SessionBus::disconnected, this, &ColourSchemePortal::leaveBus);
    watchBus();
}

void ColourSchemePortal::watchBus()
{
    if (!m_bus.isConnected()) {
        return;
    }
    QDBusConnection connection = m_bus.connection();
    m_presence =
        std::make_unique<QDBusServiceWatcher>(portalName, connection, QDBusServiceWatcher::WatchForOwnerChange);
    connect(m_presence.get(), &QDBusServiceWatcher::serviceOwnerChanged, this, &ColourSchemePortal::ask);
    // From whoever it comes, for Qt would wait for the bus to say who the portal is; what counts is its own answer.
    // QtDBus knows no other way to name a slot than by a string.
    connection.connect(QString(), portalPath, settingsInterface, QStringLiteral("SettingChanged"),
                       {appearance, colourScheme}, QString(), this, SLOT(ask()));
    ask();
}

void ColourSchemePortal::leaveBus()
{
    m_presence.reset();
    m_question.reset();
    setScheme(ColourScheme::NoPreference);
}

void ColourSchemePortal::ask()
{
    // Not ReadOne, which older portals lack.
    QDBusMessage question =
        QDBusMessage::createMethodCall(portalName, portalPath, settingsInterface, QStringLiteral("Read"));
    question.setAutoStartService(false);
    question.setArguments({appearance, colourScheme});
    m_question = std::make_unique<QDBusPendingCallWatcher>(m_bus.connection().asyncCall(question));
    connect(m_question.get(), &QDBusPendingCallWatcher::finished, this, &ColourSchemePortal::hearAnswer);
}

void ColourSchemePortal::hearAnswer()
{
    const QDBusPendingReply<QDBusVariant> answer = *m_question;
    m_question.release()->deleteLater();
    setScheme(answer.isValid() ? colourSchemeOf(unwrapped(answer.value().variant()).toUInt())
                               : ColourScheme::NoPreference);
}

void ColourSchemePortal::setScheme(ColourScheme scheme)
{
    if (std::exchange(m_scheme, scheme) != scheme) {
        Q_EMIT changed();
    }
}
