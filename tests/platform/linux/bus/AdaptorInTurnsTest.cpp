#include "platform/linux/bus/AdaptorInTurns.h"

#include "tests/support/BusPeer.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/WaitUntil.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QTimer>

#include <gtest/gtest.h>

namespace
{

const QString path = QStringLiteral("/Clerk");
const QString clerkInterface = QStringLiteral("com.example.Clerk");
const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");
const QString errors = QStringLiteral("org.freedesktop.DBus.Error.");

/// As the tool makes them of a contract.
class Clerk final : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.example.Clerk")
    Q_CLASSINFO("D-Bus Introspection", "  <interface name=\"com.example.Clerk\"/>\n")
    Q_PROPERTY(QString Name READ name)
    Q_PROPERTY(int Handled READ handled)

public:
    explicit Clerk(QObject *parent)
        : QDBusAbstractAdaptor(parent)
    {
    }

    [[nodiscard]] QString name() const { return QStringLiteral("Clerk"); }
    [[nodiscard]] int handled() const { return m_handled; }

public Q_SLOTS:
    void Toil()
    {
        QElapsedTimer time;
        time.start();
        while (!time.hasExpired(1)) {
        }
        ++m_handled;
    }

    int Add(const QList<int> &numbers, QList<int> &negative)
    {
        int sum = 0;
        for (const int number : numbers) {
            sum += number;
            negative.append(-number);
        }
        return sum;
    }

private:
    int m_handled = 0;
};

class AdaptorInTurnsTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(isStarted);
        qDBusRegisterMetaType<QList<int>>();
        ASSERT_TRUE(object.serve(server.connection(), path));
    }

    [[nodiscard]] QDBusMessage callMessage(const QString &interface, const QString &member) const
    {
        return QDBusMessage::createMethodCall(server.name(), path, interface, member);
    }

    [[nodiscard]] QDBusMessage call(const QString &interface, const QString &member, const QVariantList &arguments)
    {
        QDBusMessage message = callMessage(interface, member);
        message.setArguments(arguments);
        const QDBusPendingCall pending = client.connection().asyncCall(message);
        EXPECT_TRUE(waitUntil([&] { return pending.isFinished(); }));
        return pending.reply();
    }

    PrivateBus bus;
    bool isStarted = bus.start();
    BusPeer server{bus};
    BusPeer client{bus};
    QObject behind;
    Clerk *adaptor = new Clerk(&behind);
    QString refusal;
    AdaptorInTurns object{*adaptor, [this] { return std::exchange(refusal, {}); }};
};

TEST_F(AdaptorInTurnsTest, GivesOtherEventsTheirTurnInAFlood)
{
    constexpr int calls = 100;
    for (int i = 0; i < calls; ++i) {
        client.connection().send(callMessage(clerkInterface, QStringLiteral("Toil")));
    }
    // All of them are here before the first is handled.
    for (const BusPeer *peer : {&client, &server}) {
        peer->connection().call(QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId")));
    }
    int turnsBetween = 0;
    QTimer others;
    QObject::connect(&others, &QTimer::timeout,
                     [&] { turnsBetween += adaptor->handled() > 0 && adaptor->handled() < calls ? 1 : 0; });
    others.start(0);
    ASSERT_TRUE(waitUntil([this] { return adaptor->handled() == calls; }));
    EXPECT_GE(turnsBetween, 5);
}

TEST_F(AdaptorInTurnsTest, HandsOverWhatAMethodTakesAndGives)
{
    const QDBusMessage answer = call(clerkInterface, QStringLiteral("Add"), {QVariant::fromValue(QList<int>{1, 2, 3})});
    EXPECT_EQ(answer.signature(), QStringLiteral("iai"));
    EXPECT_EQ(answer.arguments().value(0).toInt(), 6);
    EXPECT_EQ(qdbus_cast<QList<int>>(answer.arguments().value(1)), (QList<int>{-1, -2, -3}));
    EXPECT_EQ(call({}, QStringLiteral("Add"), {QVariant::fromValue(QList<int>{4})}).arguments().value(0).toInt(), 4)
        << "a call need not name its interface";
}

TEST_F(AdaptorInTurnsTest, RefusesWhatItDoesNotHave)
{
    EXPECT_EQ(call(clerkInterface, QStringLiteral("Add"), {}).errorName(), errors + QStringLiteral("InvalidArgs"));
    EXPECT_EQ(call(clerkInterface, QStringLiteral("Add"), {QStringLiteral("one")}).errorName(),
              errors + QStringLiteral("InvalidArgs"));
    EXPECT_EQ(call(clerkInterface, QStringLiteral("Rest"), {}).errorName(), errors + QStringLiteral("UnknownMethod"));
    EXPECT_EQ(call(clerkInterface, QStringLiteral("deleteLater"), {}).errorName(),
              errors + QStringLiteral("UnknownMethod"));
    EXPECT_EQ(call(QStringLiteral("com.example.Other"), QStringLiteral("Toil"), {}).errorName(),
              errors + QStringLiteral("UnknownMethod"));
    EXPECT_EQ(adaptor->handled(), 0);
}

TEST_F(AdaptorInTurnsTest, TellsItsProperties)
{
    const QString get = QStringLiteral("Get");
    EXPECT_EQ(call(properties, get, {clerkInterface, QStringLiteral("Name")})
                  .arguments()
                  .value(0)
                  .value<QDBusVariant>()
                  .variant()
                  .toString(),
              QStringLiteral("Clerk"));
    for (const QString &interface : {clerkInterface, QString(QStringLiteral(""))}) {
        const auto all =
            qdbus_cast<QVariantMap>(call(properties, QStringLiteral("GetAll"), {interface}).arguments().value(0));
        EXPECT_EQ(all,
                  (QVariantMap{{QStringLiteral("Handled"), 0}, {QStringLiteral("Name"), QStringLiteral("Clerk")}}));
    }
}

TEST_F(AdaptorInTurnsTest, RefusesPropertiesThatItDoesNotHaveAndToBeChanged)
{
    const QString get = QStringLiteral("Get");
    for (const char *name : {"objectName", "Age", ""}) {
        EXPECT_EQ(call(properties, get, {clerkInterface, QLatin1String(name)}).errorName(),
                  errors + QStringLiteral("UnknownProperty"));
    }
    EXPECT_EQ(call(properties, get, {QStringLiteral("com.example.Other"), QStringLiteral("Name")}).errorName(),
              errors + QStringLiteral("UnknownProperty"));
    EXPECT_EQ(call(properties, QStringLiteral("GetAll"), {QStringLiteral("com.example.Other")}).errorName(),
              errors + QStringLiteral("UnknownInterface"));
    EXPECT_EQ(call(properties, get, {clerkInterface}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(call(properties, QStringLiteral("GetAll"), {}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(call(properties, QStringLiteral("Set"),
                   {clerkInterface, QStringLiteral("Handled"), QVariant::fromValue(QDBusVariant(7))})
                  .type(),
              QDBusMessage::ErrorMessage);
    EXPECT_EQ(adaptor->handled(), 0);
}

TEST_F(AdaptorInTurnsTest, PassesOnThatACallIsRefusedOnce)
{
    refusal = QStringLiteral("Not today");
    const QDBusMessage answer = call(clerkInterface, QStringLiteral("Toil"), {});
    EXPECT_EQ(answer.errorName(), errors + QStringLiteral("InvalidArgs"));
    EXPECT_EQ(answer.errorMessage(), QStringLiteral("Not today"));
    EXPECT_EQ(call(clerkInterface, QStringLiteral("Toil"), {}).type(), QDBusMessage::ReplyMessage);
}

TEST_F(AdaptorInTurnsTest, DescribesItself)
{
    const QDBusMessage answer =
        call(QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect"), {});
    EXPECT_EQ(answer.arguments().value(0).toString(),
              QStringLiteral("<node>\n  <interface name=\"com.example.Clerk\"/>\n</node>\n"));
}

TEST_F(AdaptorInTurnsTest, IsServedNoMoreOnceItHasStopped)
{
    object.stopServing();
    EXPECT_EQ(call(clerkInterface, QStringLiteral("Toil"), {}).errorName(), errors + QStringLiteral("UnknownObject"));
    EXPECT_EQ(adaptor->handled(), 0);
}

} // namespace

#include "AdaptorInTurnsTest.moc"
