#include "platform/linux/screen/SessionDictionary.h"

#include "platform/linux/include/XConnection.h"

#include <Carbon/CoreGraphics.h>
#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDeadlineTimer>
#include <QVariantMap>

#include <array>
#include <chrono>
#include <functional>
#include <optional>
#include <string_view>

namespace
{

using namespace std::chrono_literals;

QString logindName()
{
    return QStringLiteral("org.freedesktop.login1");
}

QString systemBusAddress()
{
    const QString given = qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS");
    return given.isEmpty() ? QStringLiteral("unix:path=/run/dbus/system_bus_socket") : given;
}

/// A connection to the system bus for a few questions that must all be answered by a deadline.
///
/// It is opened as one to a peer, which does not wait for the other side, and then says Hello itself: Qt's own way to a
/// bus waits for the answer to that for 25 s, and holds up every other connection meanwhile.
class BriefConnection final
{
public:
    explicit BriefConnection(std::chrono::milliseconds timeout)
        : m_deadline(timeout)
        , m_name(freshName())
        , m_connection(QDBusConnection::connectToPeer(systemBusAddress(), m_name))
    {
        const QString bus = QStringLiteral("org.freedesktop.DBus");
        m_isReady = ask(bus, QStringLiteral("/org/freedesktop/DBus"), bus, QStringLiteral("Hello")).has_value();
    }
    ~BriefConnection() { QDBusConnection::disconnectFromPeer(m_name); }
    BriefConnection(const BriefConnection &) = delete;
    BriefConnection &operator=(const BriefConnection &) = delete;

    [[nodiscard]] bool isReady() const { return m_isReady; }

    /// The first value of the answer; none for an error, and none once the time is up.
    [[nodiscard]] std::optional<QVariant> ask(const QString &service, const QString &path, const QString &interface,
                                              const QString &member, const QVariantList &arguments = {}) const
    {
        const auto left = static_cast<int>(m_deadline.remainingTime());
        if (left <= 0 || !m_connection.isConnected()) {
            return {};
        }
        QDBusMessage question = QDBusMessage::createMethodCall(service, path, interface, member);
        question.setArguments(arguments);
        question.setAutoStartService(false);
        const QDBusMessage answer = m_connection.call(question, QDBus::Block, left);
        if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) {
            return {};
        }
        return answer.arguments().constFirst();
    }

private:
    static QString freshName()
    {
        static int count = 0;
        return QStringLiteral("kiv-system-%1").arg(++count);
    }

    QDeadlineTimer m_deadline;
    QString m_name;
    QDBusConnection m_connection;
    bool m_isReady = false;
};

/// The object of this process's session; empty when logind knows none.
QString sessionPath(const BriefConnection &bus)
{
    const auto ask = [&bus](const QString &member, const QVariant &argument) {
        const auto answer = bus.ask(logindName(), QStringLiteral("/org/freedesktop/login1"),
                                    QStringLiteral("org.freedesktop.login1.Manager"), member, {argument});
        return answer ? answer->value<QDBusObjectPath>().path() : QString();
    };
    QString path = ask(QStringLiteral("GetSessionByPID"), static_cast<quint32>(QCoreApplication::applicationPid()));
    if (!path.isEmpty()) {
        return path;
    }
    // A service of the user's manager belongs to no session, but may have been told one.
    const QString named = qEnvironmentVariable("XDG_SESSION_ID");
    return named.isEmpty() ? QString() : ask(QStringLiteral("GetSession"), named);
}

/// The name in a seat's (so).
QString seatName(const QVariant &seat)
{
    const auto argument = seat.value<QDBusArgument>();
    if (argument.currentSignature() != QStringLiteral("(so)")) {
        return {};
    }
    QString name;
    argument.beginStructure();
    argument >> name;
    argument.endStructure();
    return name;
}

std::optional<LogindSession> logindSession()
{
    const BriefConnection bus(500ms);
    if (!bus.isReady()) {
        return {};
    }
    const QString path = sessionPath(bus);
    if (path.isEmpty()) {
        return {};
    }
    const auto answer = bus.ask(logindName(), path, QStringLiteral("org.freedesktop.DBus.Properties"),
                                QStringLiteral("GetAll"), {QStringLiteral("org.freedesktop.login1.Session")});
    const auto argument = answer.value_or(QVariant()).value<QDBusArgument>();
    if (argument.currentSignature() != QStringLiteral("a{sv}")) {
        return {};
    }
    const auto properties = qdbus_cast<QVariantMap>(argument);
    return LogindSession{seatName(properties.value(QStringLiteral("Seat"))),
                         properties.value(QStringLiteral("Active")).toBool(),
                         properties.value(QStringLiteral("State")).toString()};
}

bool hasExtension(xcb_connection_t *connection, std::string_view name)
{
    const auto cookie = xcb_query_extension(connection, static_cast<std::uint16_t>(name.size()), name.data());
    const XcbReply<xcb_query_extension_reply_t> reply(xcb_query_extension_reply(connection, cookie, nullptr));
    return reply && reply->present;
}

std::optional<SessionState> currentState()
{
    if (const std::optional<LogindSession> session = logindSession()) {
        return sessionState(*session);
    }
    xcb_connection_t *connection = XConnection::get();
    if (connection && isServerForViewers(std::bind_front(hasExtension, connection))) {
        return SessionState{.isLoginDone = true, .isOnConsole = false};
    }
    return std::nullopt;
}

CFBooleanRef booleanOf(bool value)
{
    return value ? kCFBooleanTrue : kCFBooleanFalse;
}

} // namespace

SessionState sessionState(const LogindSession &session)
{
    // "Active" and "Remote" alone are both misleading: a remote session is always active, and one of a display server
    // for remote viewers is not remote to logind.
    return {.isLoginDone = session.state == QStringLiteral("active") || session.state == QStringLiteral("online"),
            .isOnConsole = !session.seat.isEmpty() && session.isActive};
}

bool isServerForViewers(const std::function<bool(std::string_view)> &hasExtension)
{
    // TigerVNC 1.12 has its extension under the first of these names, 1.15 and 1.16 have it under the second.
    return hasExtension("VNC-EXTENSION") || hasExtension("TIGERVNC");
}

CFDictionaryRef CGSessionCopyCurrentDictionary()
{
    const std::optional<SessionState> state = currentState();
    if (!state) {
        return nullptr;
    }
    std::array<const void *, 2> keys{CFSTR("kCGSessionLoginDoneKey"), CFSTR("kCGSSessionOnConsoleKey")};
    std::array<const void *, 2> values{booleanOf(state->isLoginDone), booleanOf(state->isOnConsole)};
    return CFDictionaryCreate(kCFAllocatorDefault, keys.data(), values.data(), keys.size(),
                              &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
}
