#include "platform/linux/accessibility/AccessibilityBus.h"

#include "platform/LogCategories.h"
#include "platform/linux/accessibility/AccessibleApplication.h"
#include "platform/linux/workarounds/bus/AccessibilityBridge.h"
#include "platform/linux/workarounds/bus/SilentBus.h"

#include <QDBusArgument>
#include <QVariantMap>

namespace
{

QString a11yName()
{
    return QStringLiteral("org.a11y.Bus");
}

QString a11yPath()
{
    return QStringLiteral("/org/a11y/bus");
}

QString propertiesInterface()
{
    return QStringLiteral("org.freedesktop.DBus.Properties");
}

QString registryName()
{
    return QStringLiteral("org.a11y.atspi.Registry");
}

QDBusMessage questionForTheStatus()
{
    QDBusMessage question =
        QDBusMessage::createMethodCall(a11yName(), a11yPath(), propertiesInterface(), QStringLiteral("GetAll"));
    question.setArguments({QStringLiteral("org.a11y.Status")});
    return question;
}

QDBusMessage questionForTheAddress()
{
    QDBusMessage question =
        QDBusMessage::createMethodCall(a11yName(), a11yPath(), a11yName(), QStringLiteral("GetAddress"));
    question.setAutoStartService(false);
    return question;
}

} // namespace

AccessibilityBus::AccessibilityBus(SessionBus &bus, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
{
    AccessibilityBridge::makeClosed();
    if (const QString given = qEnvironmentVariable("AT_SPI_BUS_ADDRESS"); !given.isEmpty()) {
        connectTo(given);
        return;
    }
    m_status.emplace(m_bus, questionForTheStatus(),
                     StandingQuestion::News{propertiesInterface(), QStringLiteral("PropertiesChanged")});
    connect(&*m_status, &StandingQuestion::answered, this, &AccessibilityBus::hearStatus);
}

AccessibilityBus::~AccessibilityBus() = default;

void AccessibilityBus::send(const QDBusConnection &connection, const QDBusMessage &question, Handler handler)
{
    m_question = std::make_unique<QDBusPendingCallWatcher>(connection.asyncCall(question));
    connect(m_question.get(), &QDBusPendingCallWatcher::finished, this, [this, handler] {
        const QDBusMessage answer = m_question->reply();
        m_question.release()->deleteLater();
        (this->*handler)(answer);
    });
}

void AccessibilityBus::hearStatus(const QDBusMessage &answer)
{
    m_question.reset(); // What was on the way began with another answer.
    const bool isThere = answer.type() == QDBusMessage::ReplyMessage;
    const auto status = qdbus_cast<QVariantMap>(answer.arguments().value(0));
    const bool isWanted = isThere && (qEnvironmentVariableIsSet("QT_LINUX_ACCESSIBILITY_ALWAYS_ON") ||
                                      status.value(QStringLiteral("IsEnabled")).toBool() ||
                                      status.value(QStringLiteral("ScreenReaderEnabled")).toBool());
    if (isWanted == m_isOpen) {
        return;
    }
    if (!isWanted) {
        qCDebug(agentLog, "there is no screen reader any more");
        AccessibilityBridge::close();
        m_isOpen = false;
    } else if (m_isRegistered) {
        open(); // On the connection from before: what Qt serves there it never serves on another.
    } else {
        send(m_bus.connection(), questionForTheAddress(), &AccessibilityBus::hearAddress);
    }
}

void AccessibilityBus::hearAddress(const QDBusMessage &answer)
{
    if (const QString address = answer.arguments().value(0).toString();
        answer.type() == QDBusMessage::ReplyMessage && !address.isEmpty()) {
        connectTo(address);
    }
}

void AccessibilityBus::connectTo(const QString &address)
{
    const ProbedBus bus = probeBus(address);
    const QString connection = bus.state == BusState::Answers ? AccessibilityBridge::connectTo(bus.address) : QString();
    if (connection.isEmpty()) {
        qCWarning(agentLog) << "a screen reader is told nothing: no answer of the accessibility bus at" << address;
        return;
    }
    // Qt waits for the registry, which may have to be started by that bus first, or may hang.
    send(QDBusConnection(connection),
         QDBusMessage::createMethodCall(registryName(), QStringLiteral("/org/a11y/atspi/registry"), registryName(),
                                        QStringLiteral("GetRegisteredEvents")),
         &AccessibilityBus::hearRegistry);
}

void AccessibilityBus::hearRegistry(const QDBusMessage &answer)
{
    if (answer.type() != QDBusMessage::ReplyMessage) {
        qCWarning(agentLog) << "a screen reader is told nothing: no answer of its registry:" << answer.errorMessage();
        return;
    }
    open();
}

void AccessibilityBus::open()
{
    if (m_isRegistered && !AccessibilityBridge::isConnected()) {
        qCWarning(agentLog, "a screen reader is told nothing: the accessibility bus from before has gone");
        return;
    }
    m_isOpen = AccessibilityBridge::open();
    m_isRegistered = m_isOpen;
    if (m_isOpen) {
        qCDebug(agentLog, "tells a screen reader what is shown");
        AccessibleApplication::announceNotifications();
    } else {
        qCWarning(agentLog, "a screen reader is told nothing: this version of Qt keeps its bridge to itself");
    }
}
