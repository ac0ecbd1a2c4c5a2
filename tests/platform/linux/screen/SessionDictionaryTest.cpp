#include "platform/linux/screen/SessionDictionary.h"

#include "tests/platform/linux/screen/SessionFacts.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/SilentSocket.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string_view>
#include <vector>

namespace
{

struct Seat {
    QString name;
    QDBusObjectPath path;
};

QDBusArgument &operator<<(QDBusArgument &argument, const Seat &seat)
{
    argument.beginStructure();
    argument << seat.name << seat.path;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Seat &seat)
{
    argument.beginStructure();
    argument >> seat.name >> seat.path;
    argument.endStructure();
    return argument;
}

QString sessionObject()
{
    return QStringLiteral("/org/freedesktop/login1/session/_37");
}

/// A stand-in for logind that knows one session.
class Logind final : public QDBusVirtualObject
{
public:
    enum class Answers { All, NoSessionOfProcess, NoSession, Never, NoPropertiesEver, WrongTypes };

    Answers answers = Answers::All;
    QVariantMap properties;
    std::atomic<quint32> askedPid = 0;

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        const QString member = message.member();
        if (answers == Answers::Never || (answers == Answers::NoPropertiesEver && member == QStringLiteral("GetAll"))) {
            return true;
        }
        const QVariant argument = message.arguments().value(0);
        const QVariant session = QVariant::fromValue(QDBusObjectPath(sessionObject()));
        bool isKnown = answers != Answers::NoSession;
        QVariant value;
        if (member == QStringLiteral("GetSessionByPID")) {
            askedPid = argument.toUInt();
            isKnown = isKnown && answers != Answers::NoSessionOfProcess;
            value = session;
        } else if (member == QStringLiteral("GetSession")) {
            isKnown = isKnown && argument == QVariant(QStringLiteral("7"));
            value = session;
        } else if (member == QStringLiteral("GetAll")) {
            isKnown = message.path() == sessionObject() &&
                      argument == QVariant(QStringLiteral("org.freedesktop.login1.Session"));
            value = properties;
        }
        if (answers == Answers::WrongTypes) {
            value = 7;
        }
        connection.send(isKnown ? message.createReply(value)
                                : message.createErrorReply(QStringLiteral("org.freedesktop.login1.NoSuchSession"),
                                                           QStringLiteral("no such session")));
        return true;
    }
};

/// A private bus in the system bus's place, with the stand-in on a thread of its own: the question blocks this one.
class SessionDictionary : public testing::Test
{
protected:
    void SetUp() override
    {
        qDBusRegisterMetaType<Seat>();
        ASSERT_TRUE(daemon.start());
        setSession(QStringLiteral("seat0"), true, QStringLiteral("active"));
        logind.moveToThread(&thread);
        thread.start();
        QMetaObject::invokeMethod(
            &logind,
            [this] {
                QDBusConnection bus = QDBusConnection::connectToBus(daemon.address(), QStringLiteral("logind"));
                EXPECT_TRUE(bus.registerVirtualObject(QStringLiteral("/org/freedesktop/login1"), &logind,
                                                      QDBusConnection::SubPath));
                EXPECT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.login1")));
            },
            Qt::BlockingQueuedConnection);
    }
    void TearDown() override
    {
        QDBusConnection::disconnectFromBus(QStringLiteral("logind"));
        thread.quit();
        thread.wait();
    }

    void setSession(const QString &seat, bool isActive, const QString &state)
    {
        logind.properties = {
            {QStringLiteral("Seat"), QVariant::fromValue(Seat{seat, QDBusObjectPath(QStringLiteral("/"))})},
            {QStringLiteral("Active"), isActive},
            {QStringLiteral("State"), state},
            {QStringLiteral("Remote"), false}};
    }

    PrivateBus daemon;
    ScopedVariable address{"DBUS_SYSTEM_BUS_ADDRESS", daemon.address().toUtf8()};
    ScopedVariable sessionID{"XDG_SESSION_ID", {}};
    QThread thread;
    Logind logind;
};

TEST(SessionState, FollowsSeatActivityAndState)
{
    struct Case {
        const char *seat;
        bool isActive;
        const char *state;
        bool isLoginDone;
        bool isOnConsole;
    };
    for (const Case &c : {
             Case{"seat0", true, "active", true, true},
             Case{"seat0", false, "online", true, false},
             Case{"seat0", true, "opening", false, true},
             Case{"seat0", true, "closing", false, true},
             Case{"seat1", true, "active", true, true},
             Case{"", true, "active", true, false},
             Case{"", false, "online", true, false},
             Case{"", true, "opening", false, false},
             Case{"", true, "", false, false},
             Case{"", true, "Active", false, false},
         }) {
        const SessionState state =
            sessionState({QString::fromLatin1(c.seat), c.isActive, QString::fromLatin1(c.state)});
        EXPECT_EQ(state.isLoginDone, c.isLoginDone) << c.seat << ' ' << c.state;
        EXPECT_EQ(state.isOnConsole, c.isOnConsole) << c.seat << ' ' << c.state;
    }
}

TEST(ServerForViewers, HasAnExtensionOfOneOfTwoNames)
{
    struct Case {
        const char *server;
        std::vector<std::string_view> extensions;
        bool isForViewers;
    };
    // As xdpyinfo lists them.
    for (const Case &c : {
             Case{"TigerVNC 1.12", {"RANDR", "VNC-EXTENSION", "XTEST"}, true},
             Case{"TigerVNC 1.15 and 1.16", {"RANDR", "TIGERVNC", "XTEST"}, true},
             Case{"Xorg", {"RANDR", "XFree86-DGA", "XTEST"}, false},
             Case{"none", {}, false},
         }) {
        const auto hasExtension = [&c](std::string_view name) {
            return std::ranges::find(c.extensions, name) != c.extensions.end();
        };
        EXPECT_EQ(isServerForViewers(hasExtension), c.isForViewers) << c.server;
    }
}

TEST_F(SessionDictionary, SaysWhatLogindSays)
{
    EXPECT_EQ(sessionFacts(), (SessionFacts{true, true}));
    EXPECT_EQ(logind.askedPid, static_cast<quint32>(QCoreApplication::applicationPid()));
    setSession(QString(), true, QStringLiteral("online"));
    EXPECT_EQ(sessionFacts(), (SessionFacts{true, false}));
    setSession(QStringLiteral("seat0"), true, QStringLiteral("opening"));
    EXPECT_EQ(sessionFacts(), (SessionFacts{false, true}));
}

TEST_F(SessionDictionary, AsksForTheNamedSessionOfAProcessThatHasNone)
{
    logind.answers = Logind::Answers::NoSessionOfProcess;
    EXPECT_EQ(sessionFacts(), std::nullopt);
    const ScopedVariable other("XDG_SESSION_ID", "8");
    EXPECT_EQ(sessionFacts(), std::nullopt);
    const ScopedVariable named("XDG_SESSION_ID", "7");
    EXPECT_EQ(sessionFacts(), (SessionFacts{true, true}));
}

TEST_F(SessionDictionary, IsNoneWithoutASession)
{
    const ScopedVariable named("XDG_SESSION_ID", "7");
    logind.answers = Logind::Answers::NoSession;
    EXPECT_EQ(sessionFacts(), std::nullopt);
    logind.answers = Logind::Answers::WrongTypes;
    EXPECT_EQ(sessionFacts(), std::nullopt);
}

TEST_F(SessionDictionary, TakesAMissingOrOddPropertyForNothing)
{
    logind.properties = {};
    EXPECT_EQ(sessionFacts(), (SessionFacts{false, false}));
    logind.properties = {{QStringLiteral("Seat"), 5}, {QStringLiteral("Active"), true}, {QStringLiteral("State"), 5}};
    EXPECT_EQ(sessionFacts(), (SessionFacts{false, false}));
}

void expectNoneInHalfASecond()
{
    QElapsedTimer time;
    time.start();
    EXPECT_EQ(sessionFacts(), std::nullopt);
    EXPECT_GE(time.elapsed(), 400);
    EXPECT_LT(time.elapsed(), 1000);
}

TEST_F(SessionDictionary, WaitsHalfASecondInAll)
{
    const ScopedVariable named("XDG_SESSION_ID", "7");
    logind.answers = Logind::Answers::Never;
    expectNoneInHalfASecond();
    logind.answers = Logind::Answers::NoPropertiesEver;
    expectNoneInHalfASecond();
}

TEST(SessionDictionaryWithoutLogind, WaitsHalfASecondForABusThatIsStuck)
{
    const QTemporaryDir folder;
    const SilentSocket bus(folder.filePath(QStringLiteral("socket")));
    const ScopedVariable address("DBUS_SYSTEM_BUS_ADDRESS", bus.address());
    expectNoneInHalfASecond();
}

TEST(SessionDictionaryWithoutLogind, IsNoneAtOnce)
{
    QElapsedTimer time;
    time.start();
    EXPECT_EQ(sessionFacts(), std::nullopt) << "no bus";
    PrivateBus daemon;
    ASSERT_TRUE(daemon.start());
    const ScopedVariable address("DBUS_SYSTEM_BUS_ADDRESS", daemon.address().toUtf8());
    EXPECT_EQ(sessionFacts(), std::nullopt) << "a bus, but nobody on it";
    EXPECT_LT(time.elapsed(), 400);
}

} // namespace
