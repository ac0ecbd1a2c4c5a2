#include "platform/linux/workarounds/bus/SilentBus.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QStringList>

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

/// A method call without arguments, as the D-Bus specification lays it out.
class MethodCall final
{
public:
    void addField(char code, char type, const QByteArray &value)
    {
        padTo8();
        m_message += code;
        m_message += '\1';
        m_message += type;
        m_message += '\0';
        m_message += static_cast<char>(value.size());
        m_message += QByteArray(3, '\0') + value + '\0';
        m_message[12] = static_cast<char>(m_message.size() - 16);
    }

    [[nodiscard]] QByteArray bytes()
    {
        padTo8();
        return m_message;
    }

private:
    void padTo8() { m_message.resize((m_message.size() + 7) / 8 * 8, '\0'); }

    // Little-endian, a method call, no flags, version 1; no body, number 1, and the length of the fields.
    QByteArray m_message = QByteArray("l\1\0\1\0\0\0\0\1\0\0\0\0\0\0\0", 16);
};

QByteArray helloToTheBus()
{
    const QByteArray bus = QByteArrayLiteral("org.freedesktop.DBus");
    MethodCall call;
    call.addField(1, 'o', QByteArrayLiteral("/org/freedesktop/DBus"));
    call.addField(2, 's', bus);
    call.addField(3, 's', QByteArrayLiteral("Hello"));
    call.addField(6, 's', bus);
    return call.bytes();
}

/// A talk with a bus, which ends at the deadline.
class Talk final
{
public:
    Talk(int descriptor, const QDeadlineTimer &deadline)
        : m_descriptor(descriptor)
        , m_deadline(deadline)
    {
    }

    [[nodiscard]] bool say(const QByteArray &words) const
    {
        return ::send(m_descriptor, words.constData(), static_cast<std::size_t>(words.size()), MSG_NOSIGNAL) ==
               words.size();
    }

    /// Waits for more of the answer. False when the bus has gone, or says nothing more in time.
    [[nodiscard]] bool hearMore()
    {
        if (m_deadline.hasExpired()) { // Also of one that says more and more.
            return false;
        }
        pollfd wanted{m_descriptor, POLLIN, 0};
        int ready = 0;
        do {
            ready = ::poll(&wanted, 1, static_cast<int>(m_deadline.remainingTime()));
        } while (ready < 0 && errno == EINTR);
        char bytes[256];
        const ssize_t size = ready > 0 ? ::recv(m_descriptor, bytes, sizeof bytes, 0) : -1;
        m_isOver = size == 0;
        m_heard.append(bytes, size > 0 ? size : 0);
        return size > 0;
    }

    /// Waits until so much has been heard; the same.
    [[nodiscard]] bool hear(qsizetype size)
    {
        while (m_heard.size() < size) {
            if (!hearMore()) {
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] BusState whyNoAnswer() const { return m_isOver ? BusState::Absent : BusState::Unusable; }
    [[nodiscard]] const QByteArray &heard() const { return m_heard; }
    void forgetLine() { m_heard.remove(0, m_heard.indexOf('\n') + 1); }

private:
    int m_descriptor;
    QDeadlineTimer m_deadline;
    QByteArray m_heard;
    bool m_isOver = false;
};

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
        return errno == EAGAIN ? BusState::Unusable : BusState::Absent;
    }
    Talk talk(socket.descriptor(), deadline);
    if (!talk.say(QByteArray("\0AUTH EXTERNAL ", 15) + QByteArray::number(::getuid()).toHex() + "\r\n")) {
        return BusState::Absent;
    }
    while (!talk.heard().contains('\n')) {
        if (!talk.hearMore()) {
            return talk.whyNoAnswer();
        }
    }
    if (!talk.heard().startsWith("OK ")) {
        return BusState::Answers;
    }
    talk.forgetLine();
    // The type of a message is its second byte.
    if (!talk.say("BEGIN\r\n" + helloToTheBus()) || !talk.hear(2)) {
        return BusState::Unusable;
    }
    constexpr char methodReturn = 2;
    return talk.heard().at(1) == methodReturn ? BusState::Answers : BusState::Unusable;
}

} // namespace

ProbedBus probeBus(const QString &address, std::chrono::milliseconds timeout)
{
    const QDeadlineTimer deadline(timeout);
    BusState state = BusState::Absent;
    for (const QString &entry : address.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const std::optional<QByteArray> name = socketName(entry);
        switch (name ? stateOf(*name, deadline) : BusState::Answers) {
        case BusState::Answers:
            return {BusState::Answers, entry};
        case BusState::Unusable:
            state = BusState::Unusable;
            break;
        case BusState::Absent:
            break;
        }
    }
    return {state, {}};
}
