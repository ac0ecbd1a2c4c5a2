#include "platform/linux/bus/SessionBusAddress.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QStringList>
#include <QUrl>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace
{

QString addressFromEnvironment()
{
    // "autolaunch:" would start a bus that nobody ends.
    const QStringList entries = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS").split(QLatin1Char(';'));
    QStringList kept;
    for (const QString &entry : entries) {
        if (!entry.isEmpty() && !entry.startsWith(QStringLiteral("autolaunch:")) &&
            !entry.startsWith(QStringLiteral("disabled:"))) {
            kept.append(entry);
        }
    }
    return kept.join(QLatin1Char(';'));
}

/// The socket's name for the kernel, which begins with a zero byte for an abstract one; none for other addresses.
std::optional<QByteArray> socketName(const QString &entry)
{
    const QString transport = QStringLiteral("unix:");
    if (!entry.startsWith(transport)) {
        return {};
    }
    for (const QString &pair : entry.mid(transport.size()).split(QLatin1Char(','))) {
        const QByteArray value = QByteArray::fromPercentEncoding(pair.section(QLatin1Char('='), 1).toLatin1());
        if (pair.startsWith(QStringLiteral("path="))) {
            return value;
        }
        if (pair.startsWith(QStringLiteral("abstract="))) {
            return QByteArray(1, '\0') + value;
        }
    }
    return {};
}

class Socket final
{
public:
    Socket()
        : m_descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
    {
    }
    ~Socket() { ::close(m_descriptor); }
    Socket(const Socket &) = delete;
    Socket &operator=(const Socket &) = delete;

    [[nodiscard]] int descriptor() const { return m_descriptor; }

private:
    int m_descriptor;
};

bool isReadableBy(int descriptor, const QDeadlineTimer &deadline)
{
    pollfd wanted{descriptor, POLLIN, 0};
    int ready = 0;
    do {
        ready = ::poll(&wanted, 1, static_cast<int>(deadline.remainingTime()));
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

BusState stateOf(const QByteArray &name, const QDeadlineTimer &deadline)
{
    const Socket socket;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name.isEmpty() || static_cast<std::size_t>(name.size()) >= sizeof address.sun_path) {
        return BusState::Absent;
    }
    std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
    // The length counts in an abstract name.
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + static_cast<std::size_t>(name.size()) +
                                             (name.front() == '\0' ? 0 : 1));
    if (::connect(socket.descriptor(), reinterpret_cast<const sockaddr *>(&address), size) != 0) {
        // So many wait to be taken already that nobody seems to take any.
        return errno == EAGAIN ? BusState::Silent : BusState::Absent;
    }
    QByteArray hello("\0AUTH EXTERNAL ", 15);
    hello += QByteArray::number(::getuid()).toHex() + "\r\n";
    if (::send(socket.descriptor(), hello.constData(), static_cast<std::size_t>(hello.size()), MSG_NOSIGNAL) !=
        hello.size()) {
        return BusState::Absent;
    }
    if (!isReadableBy(socket.descriptor(), deadline)) {
        return BusState::Silent;
    }
    char first = 0;
    return ::recv(socket.descriptor(), &first, 1, 0) == 1 ? BusState::Answers : BusState::Absent;
}

} // namespace

QString sessionBusAddress()
{
    const QString given = addressFromEnvironment();
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!given.isEmpty() || runtime.isEmpty()) {
        return given;
    }
    // Of the characters that an address may hold unescaped, '~' is not one.
    return QStringLiteral("unix:path=") +
           QString::fromLatin1(QUrl::toPercentEncoding(runtime + QStringLiteral("/bus"), "/", "~"));
}

ProbedBus probeBus(const QString &address, std::chrono::milliseconds limit)
{
    const QDeadlineTimer deadline(limit);
    BusState state = BusState::Absent;
    for (const QString &entry : address.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const std::optional<QByteArray> name = socketName(entry);
        switch (name ? stateOf(*name, deadline) : BusState::Answers) {
        case BusState::Answers:
            return {BusState::Answers, entry};
        case BusState::Silent:
            state = BusState::Silent;
            break;
        case BusState::Absent:
            break;
        }
    }
    return {state, {}};
}
