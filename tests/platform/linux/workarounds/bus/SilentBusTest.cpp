#include "platform/linux/workarounds/bus/SilentBus.h"

#include "tests/support/BusForOne.h"
#include "tests/support/BusPeer.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/SilentSocket.h"
#include "tests/support/StallingBus.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace
{

using namespace std::chrono_literals;

class UnixSocket final
{
public:
    UnixSocket() = default;
    ~UnixSocket() { ::close(m_descriptor); }
    UnixSocket(const UnixSocket &) = delete;
    UnixSocket &operator=(const UnixSocket &) = delete;

    [[nodiscard]] int descriptor() const { return m_descriptor; }
    /// A name that begins with a zero byte is an abstract one.
    [[nodiscard]] bool bindTo(const QByteArray &name) const
    {
        return with(name, &::bind) && ::listen(m_descriptor, 1) == 0;
    }
    [[nodiscard]] bool connectTo(const QByteArray &name) const { return with(name, &::connect); }

private:
    [[nodiscard]] bool with(const QByteArray &name, int (*call)(int, const sockaddr *, socklen_t)) const
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
        const auto size = offsetof(sockaddr_un, sun_path) + static_cast<std::size_t>(name.size());
        return call(m_descriptor, reinterpret_cast<const sockaddr *>(&address), static_cast<socklen_t>(size)) == 0;
    }

    const int m_descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

/// Answers the first who connects with these words, or without an end when there are none, and hangs up.
class TerseBus final
{
public:
    explicit TerseBus(const std::optional<QByteArray> &words)
    {
        EXPECT_TRUE(m_socket.bindTo(path().toLocal8Bit()));
        m_thread = std::thread([this, words] {
            const int client = ::accept4(m_socket.descriptor(), nullptr, nullptr, SOCK_CLOEXEC);
            char question[64];
            EXPECT_GT(::recv(client, question, sizeof question, 0), 0);
            if (words) {
                EXPECT_TRUE(say(client, *words));
            } else {
                while (say(client, QByteArray(100'000, 'x'))) {
                }
            }
            ::close(client);
        });
    }
    ~TerseBus() { m_thread.join(); }
    TerseBus(const TerseBus &) = delete;
    TerseBus &operator=(const TerseBus &) = delete;

    [[nodiscard]] QString address() const { return QStringLiteral("unix:path=") + path(); }

private:
    [[nodiscard]] QString path() const { return m_folder.filePath(QStringLiteral("bus")); }
    static bool say(int client, const QByteArray &words)
    {
        return ::send(client, words.constData(), static_cast<std::size_t>(words.size()), MSG_NOSIGNAL) == words.size();
    }

    const QTemporaryDir m_folder;
    const UnixSocket m_socket;
    std::thread m_thread;
};

TEST(SilentBus, IsNoneThatAnswersHello)
{
    PrivateBus bus;
    ASSERT_TRUE(bus.start());
    const ProbedBus probed = probeBus(QStringLiteral("unix:path=/nonexistent;%1;unix:path=/other").arg(bus.address()));
    EXPECT_EQ(probed.state, BusState::Answers);
    EXPECT_EQ(probed.address, bus.address());
}

TEST(SilentBus, IsAbsentWhereNobodyListens)
{
    for (const char *address : {"", "unix:path=/nonexistent", "unix:path=", "unix:abstract=no-such-socket"}) {
        EXPECT_EQ(probeBus(QLatin1String(address)).state, BusState::Absent) << address;
    }
}

TEST(SilentBus, IsAbsentWhenItHangsUp)
{
    const TerseBus bus("");
    EXPECT_EQ(probeBus(bus.address()).state, BusState::Absent);
}

TEST(SilentBus, IsNoneThatWantsToKnowMoreOfWhoComes)
{
    const TerseBus bus("REJECTED DBUS_COOKIE_SHA1\r\n");
    EXPECT_EQ(probeBus(bus.address()).state, BusState::Answers);
}

TEST(SilentBus, IsUnusableWhenItNeverComesToAnEnd)
{
    const TerseBus bus(std::nullopt);
    EXPECT_EQ(probeBus(bus.address(), 50ms).state, BusState::Unusable);
}

TEST(SilentBus, IsNoneThatIsElsewhere)
{
    const QString address = QStringLiteral("tcp:host=127.0.0.1,port=1");
    const ProbedBus probed = probeBus(address);
    EXPECT_EQ(probed.state, BusState::Answers);
    EXPECT_EQ(probed.address, address);
}

TEST(SilentBus, IsUnusableWhenItSaysNothing)
{
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("a b")));
    const SilentSocket silent(folder.filePath(QStringLiteral("a b/bus")));
    EXPECT_EQ(probeBus(QStringLiteral("unix:path=%1/a%20b/bus").arg(folder.path()), 50ms).state, BusState::Unusable);

    const QByteArray name = "kivmenua-test-" + QByteArray::number(QCoreApplication::applicationPid());
    const UnixSocket abstract;
    ASSERT_TRUE(abstract.bindTo('\0' + name));
    EXPECT_EQ(probeBus(QStringLiteral("unix:abstract=") + QString::fromLatin1(name), 50ms).state, BusState::Unusable);
    EXPECT_EQ(probeBus(QStringLiteral("unix:path=") + QString::fromLatin1(name), 50ms).state, BusState::Absent);

    const StallingBus stalling;
    EXPECT_EQ(probeBus(QString::fromLocal8Bit(stalling.address()), 50ms).state, BusState::Unusable);
}

TEST(SilentBus, IsUnusableWhenItRefusesHello)
{
    const BusForOne crowded;
    ASSERT_TRUE(crowded.isRunning());
    const QString occupant = QStringLiteral("occupant of a bus");
    ASSERT_TRUE(QDBusConnection::connectToBus(QString::fromLatin1(crowded.address()), occupant).isConnected());
    EXPECT_EQ(probeBus(QString::fromLatin1(crowded.address())).state, BusState::Unusable);
    QDBusConnection::disconnectFromBus(occupant);
}

TEST(SilentBus, IsUnusableWhenItTakesNobodyIn)
{
    const QTemporaryDir folder;
    const SilentSocket silent(folder.filePath(QStringLiteral("bus")), 0);
    const QString address = QString::fromLocal8Bit(silent.address());
    const UnixSocket first; // For one there is room to wait.
    ASSERT_TRUE(first.connectTo(folder.filePath(QStringLiteral("bus")).toLocal8Bit()));
    // Its time is not needed: there is nothing to be waited for.
    EXPECT_EQ(probeBus(address, std::chrono::hours(1)).state, BusState::Unusable);
}

} // namespace
