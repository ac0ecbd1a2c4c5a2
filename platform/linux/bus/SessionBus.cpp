#include "platform/linux/include/SessionBus.h"

#include "platform/LogCategories.h"
#include "platform/linux/bus/SessionBusAddress.h"
#include "platform/linux/workarounds/bus/LibdbusLimit.h"
#include "platform/linux/workarounds/bus/LibdbusWarnings.h"
#include "platform/linux/workarounds/bus/SilentBus.h"

#include <QDBusError>

#include <utility>

namespace
{

/// Qt hands out one connection for a name, dead or alive: each try needs a name of its own.
QString freshConnectionName()
{
    static int count = 0;
    return QStringLiteral("kiv-session-%1").arg(++count);
}

/// What a probe has just found out, for the try that follows.
std::optional<ProbedBus> probedAhead;

QDBusConnection noConnection()
{
    return QDBusConnection(QString());
}

/// Whether the bus has not said anything to a question.
bool isUnanswered(const QDBusMessage &answer)
{
    return answer.type() == QDBusMessage::InvalidMessage || ::isUnanswered(QDBusError(answer).type());
}

} // namespace

bool isUnanswered(QDBusError::ErrorType error)
{
    switch (error) {
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
    case QDBusError::Disconnected:
        return true;
    default:
        return false;
    }
}

SessionBus &SessionBus::instance()
{
    // Never destroyed: without a bus at the start QtDBus makes its own statics later, and is gone before this one,
    // which would then wait for it for ever.
    static SessionBus &bus = *new SessionBus;
    return bus;
}

bool SessionBus::probeAhead()
{
    probedAhead = probeBus(sessionBusAddress());
    return probedAhead->state != BusState::Unusable;
}

SessionBus::SessionBus(std::chrono::milliseconds retryInterval)
    : m_connection(noConnection())
{
    keepLibdbusFromAborting();
    m_retry.setInterval(retryInterval);
    connect(&m_retry, &QTimer::timeout, this, &SessionBus::tryToConnect);
    tryToConnect();
}

SessionBus::~SessionBus()
{
    disconnectFromBus();
}

bool SessionBus::isConnected() const
{
    return m_connection.isConnected();
}

QDBusConnection SessionBus::connection() const
{
    return m_connection;
}

QDBusConnection SessionBus::connectOnceMore() const
{
    if (!isConnected() || probeBus(m_address).state != BusState::Answers) {
        return noConnection();
    }
    const QString name = freshConnectionName();
    QDBusConnection connection = QDBusConnection::connectToBus(m_address, name);
    if (!connection.isConnected()) {
        QDBusConnection::disconnectFromBus(name);
        return noConnection();
    }
    readWithoutLimit(connection);
    return connection;
}

std::optional<qint64> SessionBus::processOf(const QString &busName) const
{
    const QDBusMessage answer = ask(QStringLiteral("GetConnectionUnixProcessID"), {busName});
    if (answer.type() == QDBusMessage::ReplyMessage) {
        return answer.arguments().value(0).toUInt();
    }
    return isUnanswered(answer) ? std::nullopt : std::optional<qint64>(0);
}

QString SessionBus::ownerOf(const QString &busName) const
{
    const QDBusMessage answer = ask(QStringLiteral("GetNameOwner"), {busName});
    if (answer.type() == QDBusMessage::ReplyMessage) {
        return answer.arguments().value(0).toString();
    }
    return isUnanswered(answer) ? QString() : QStringLiteral("");
}

QStringList SessionBus::names() const
{
    return ask(QStringLiteral("ListNames"), {}).arguments().value(0).toStringList();
}

bool SessionBus::requestName(const QString &busName) const
{
    constexpr uint standInLine = 0;
    const QDBusMessage answer = ask(QStringLiteral("RequestName"), {busName, standInLine});
    if (answer.type() != QDBusMessage::ReplyMessage) {
        return isUnanswered(answer);
    }
    constexpr uint stands = 2;
    if (answer.arguments().value(0).toUInt() == stands) {
        qCWarning(linkLog, "another program has the name %s on the session bus: waiting for it", qPrintable(busName));
    }
    return true;
}

void SessionBus::releaseName(const QString &busName) const
{
    static_cast<void>(ask(QStringLiteral("ReleaseName"), {busName}));
}

void SessionBus::flush() const
{
    // The bus answers in the order in which it is asked.
    static_cast<void>(ask(QStringLiteral("GetId"), {}));
}

QDBusMessage SessionBus::ask(const QString &member, const QVariantList &arguments) const
{
    if (!isConnected()) {
        return {};
    }
    constexpr int timeout = 500; // milliseconds
    const QString bus = QStringLiteral("org.freedesktop.DBus");
    QDBusMessage question = QDBusMessage::createMethodCall(bus, QStringLiteral("/org/freedesktop/DBus"), bus, member);
    question.setArguments(arguments);
    return m_connection.call(question, QDBus::Block, timeout);
}

void SessionBus::tryToConnect()
{
    const ProbedBus bus = probedAhead ? *std::exchange(probedAhead, {}) : probeBus(sessionBusAddress());
    if (bus.state == BusState::Answers) {
        m_connection = QDBusConnection::connectToBus(bus.address, freshConnectionName());
        m_address = bus.address;
    }
    if (!isConnected()) {
        disconnectFromBus();
        if (!m_retry.isActive()) {
            const char *why = bus.state == BusState::Absent ? "no session bus at" : "no answer of the session bus at";
            qCWarning(linkLog) << why << sessionBusAddress() << "- it is tried again";
        }
        m_retry.start();
        return;
    }
    qCDebug(linkLog) << "on the session bus at" << m_address << "as" << m_connection.baseService();
    m_retry.stop();
    readWithoutLimit(m_connection);
    // QtDBus knows no other way to name a slot than by a string.
    m_connection.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                         QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                         SLOT(onDisconnected()));
    Q_EMIT connected();
}

void SessionBus::onDisconnected()
{
    // A late word of an earlier connection says nothing about the present one.
    if (isConnected() || m_retry.isActive()) {
        return;
    }
    qCDebug(linkLog, "the session bus has gone: it is tried again"); // As it does at the end of a session.
    disconnectFromBus();
    m_retry.start();
    Q_EMIT disconnected();
}

void SessionBus::disconnectFromBus()
{
    const QString name = m_connection.name();
    m_connection = noConnection();
    if (!name.isEmpty()) {
        QDBusConnection::disconnectFromBus(name);
    }
}
