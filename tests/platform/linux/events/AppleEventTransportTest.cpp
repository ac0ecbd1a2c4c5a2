#include "platform/linux/events/AppleEventTransport.h"

#include "platform/linux/events/AppleEventMessage.h"
#include "platform/linux/include/SessionBus.h"
#include "tests/platform/linux/events/RawEvent.h"
#include "tests/support/BusPeer.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/LogLines.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/WaitUntil.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusPendingCall>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QXmlStreamReader>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <vector>

namespace
{

using namespace std::chrono_literals;

constexpr AEEventClass numberClass = fourCharCode("test");
constexpr AEEventID numberID = fourCharCode("numb");

QString ownBusName()
{
    return QStringLiteral("com.tamborel.kivune.p%1").arg(QCoreApplication::applicationPid());
}

template <typename T>
T valueOf(const AppleEventContents &event, AEKeyword keyword)
{
    const AppleEventContents::Parameter *parameter = event.parameter(keyword);
    T value{};
    if (!parameter || parameter->bytes.size() != sizeof value) {
        ADD_FAILURE() << "parameter missing, or of another size";
        return value;
    }
    std::memcpy(&value, parameter->bytes.constData(), sizeof value);
    return value;
}

/// A receiver on a private bus, and what has come to it.
class Transport : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(isStarted); }

    [[nodiscard]] bool isNameOwned() const { return bus.processOf(ownBusName()) == QCoreApplication::applicationPid(); }

    [[nodiscard]] QDBusMessage call(const QDBusMessage &message) const
    {
        // Asynchronous at heart: the receiver needs this thread's event loop.
        const QDBusPendingCall pending = peer.connection().asyncCall(message);
        EXPECT_TRUE(waitUntil([&] { return pending.isFinished(); }));
        return pending.reply();
    }

    OSErr status = noErr;
    std::function<void()> duringReceipt = [] {};
    std::vector<AppleEventContents> events;

    PrivateBus daemon;
    bool isStarted = daemon.start();
    ScopedVariable address{"DBUS_SESSION_BUS_ADDRESS", daemon.address().toUtf8()};
    SessionBus bus{10ms};
    AppleEventTransport transport{bus, [this](const AppleEventContents &event) {
                                      events.push_back(event);
                                      duringReceipt();
                                      return status;
                                  }};
    BusPeer peer{daemon};
};

TEST_F(Transport, OwnsTheNameOnlyWhileItReceives)
{
    EXPECT_FALSE(isNameOwned());
    transport.startReceiving();
    EXPECT_TRUE(isNameOwned());
    transport.stopReceiving();
    EXPECT_FALSE(isNameOwned());
    const QDBusMessage answer =
        call(rawEvent(bus.connection().baseService(), QStringLiteral("test"), QStringLiteral("numb")));
    EXPECT_EQ(QDBusError(answer).type(), QDBusError::UnknownObject);
    EXPECT_TRUE(events.empty());
}

TEST_F(Transport, ReadsAHandMadeEvent)
{
    transport.startReceiving();
    status = 77;
    const QDBusMessage answer =
        call(rawEvent(ownBusName(), QStringLiteral("test"), QStringLiteral("numb"),
                      {{QStringLiteral("numb"), QStringLiteral("magn"), bytesOf<quint32>(0x01020304)},
                       {QStringLiteral("none"), QStringLiteral("ptxt"), QByteArray()},
                       {QString::fromLatin1("\xa5\x01\xff "), QStringLiteral("psn "), QByteArray("a\0b", 3)},
                       {QStringLiteral("twic"), QStringLiteral("aaaa"), QByteArray("first")},
                       {QStringLiteral("twic"), QStringLiteral("bbbb"), QByteArray("second")}}));
    EXPECT_EQ(answer.signature(), QStringLiteral("i"));
    EXPECT_EQ(answer.arguments().value(0).toInt(), 77);

    ASSERT_EQ(events.size(), 1u);
    const AppleEventContents &event = events.front();
    EXPECT_EQ(event.eventClass(), numberClass);
    EXPECT_EQ(event.eventID(), numberID);
    EXPECT_EQ(event.parameters().size(), 4u);
    EXPECT_EQ(valueOf<UInt32>(event, fourCharCode("numb")), 0x01020304u);
    EXPECT_EQ(event.parameter(fourCharCode("numb"))->type, typeUInt32);
    EXPECT_EQ(event.parameter(fourCharCode("none"))->bytes, QByteArray());
    EXPECT_EQ(event.parameter(0xa501ff20)->bytes, QByteArray("a\0b", 3));
    EXPECT_EQ(event.parameter(fourCharCode("twic"))->bytes, "second");
    EXPECT_EQ(event.parameter(fourCharCode("twic"))->type, fourCharCode("bbbb"));
    EXPECT_EQ(event.sender, std::optional<SInt32>(QCoreApplication::applicationPid()));
}

TEST_F(Transport, ReceivesACallThatNamesNoInterface)
{
    transport.startReceiving();
    QDBusMessage message = QDBusMessage::createMethodCall(
        ownBusName(), QStringLiteral("/com/tamborel/kivune/AppleEvents"), QString(), QStringLiteral("Send"));
    message.setArguments(rawEvent(ownBusName(), QStringLiteral("test"), QStringLiteral("numb")).arguments());
    EXPECT_EQ(call(message).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(events.size(), 1u);
}

TEST_F(Transport, RefusesWhatIsNoEvent)
{
    transport.startReceiving();
    const QString four = QStringLiteral("four");
    const auto withKeyword = [&](const QString &keyword) {
        return rawEvent(ownBusName(), four, four, {{keyword, four, QByteArray("x")}});
    };
    QDBusMessage tooFew = rawCall(ownBusName());
    tooFew << four << four;
    QDBusMessage tooMany = rawEvent(ownBusName(), four, four);
    tooMany << 1;
    QDBusMessage otherList = rawCall(ownBusName());
    otherList << four << four << QStringList{four};
    QDBusMessage inVariant = rawCall(ownBusName());
    inVariant << four << four << QVariant::fromValue(QDBusVariant(QVariant::fromValue(QList<RawParameter>())));
    const std::vector<QDBusMessage> malformed = {
        rawCall(ownBusName()),
        tooFew,
        tooMany,
        otherList,
        inVariant,
        rawEvent(ownBusName(), QString(), four),
        rawEvent(ownBusName(), QStringLiteral("abc"), four),
        rawEvent(ownBusName(), four, QStringLiteral("abcde")),
        withKeyword(QStringLiteral("abc")),
        withKeyword(QStringLiteral("ab€c")),
        withKeyword(QStringLiteral("ab\U0001F600")),
        rawEvent(ownBusName(), four, four, {{four, QStringLiteral("x"), QByteArray()}}),
        rawEvent(ownBusName(), four, four, QList<RawParameter>(65, {four, four, QByteArray("x")})),
    };
    for (const QDBusMessage &message : malformed) {
        EXPECT_EQ(QDBusError(call(message)).type(), QDBusError::InvalidArgs) << qPrintable(message.signature());
        ASSERT_TRUE(peer.connection().send(message));
    }
    // All of the silent ones have been received once this is answered.
    EXPECT_EQ(call(rawEvent(ownBusName(), four, four)).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(events.size(), 1u);
}

TEST_F(Transport, RefusesOtherCalls)
{
    transport.startReceiving();
    QDBusMessage other =
        QDBusMessage::createMethodCall(ownBusName(), QStringLiteral("/com/tamborel/kivune/AppleEvents"),
                                       QStringLiteral("com.tamborel.kivune.AppleEvents"), QStringLiteral("Receive"));
    EXPECT_EQ(QDBusError(call(other)).type(), QDBusError::UnknownMethod);
    other = QDBusMessage::createMethodCall(ownBusName(), QStringLiteral("/com/tamborel/kivune/AppleEvents"),
                                           QStringLiteral("com.example.Other"), QStringLiteral("Send"));
    EXPECT_EQ(QDBusError(call(other)).type(), QDBusError::UnknownMethod);
    EXPECT_TRUE(events.empty());
}

/// The XML of one <interface>, blanks between elements left out.
QString interfaceIn(const QByteArray &document)
{
    QXmlStreamReader reader(document);
    QString text;
    bool isInside = false;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && reader.name() == QStringLiteral("interface")) {
            isInside =
                reader.attributes().value(QStringLiteral("name")) == QStringLiteral("com.tamborel.kivune.AppleEvents");
        }
        if (isInside && reader.isStartElement()) {
            text += QLatin1Char('<') + reader.name().toString();
            for (const QXmlStreamAttribute &attribute : reader.attributes()) {
                text += QStringLiteral(" %1='%2'").arg(attribute.name(), attribute.value());
            }
            text += QStringLiteral(">\n");
        } else if (isInside && reader.isEndElement()) {
            text += QStringLiteral("</%1>\n").arg(reader.name());
            isInside = reader.name() != QStringLiteral("interface");
        }
    }
    EXPECT_FALSE(reader.hasError()) << qPrintable(reader.errorString());
    return text;
}

QDBusMessage requestOfContract()
{
    return QDBusMessage::createMethodCall(ownBusName(), QStringLiteral("/com/tamborel/kivune/AppleEvents"),
                                          QStringLiteral("org.freedesktop.DBus.Introspectable"),
                                          QStringLiteral("Introspect"));
}

TEST_F(Transport, DescribesItselfByTheContract)
{
    transport.startReceiving();
    const QDBusMessage answer = call(requestOfContract());
    QFile contract(QStringLiteral(KIV_SOURCE_DIR "/resources/dbus/com.tamborel.kivune.AppleEvents.xml"));
    ASSERT_TRUE(contract.open(QIODevice::ReadOnly));
    const QString expected = interfaceIn(contract.readAll());
    ASSERT_TRUE(expected.contains(QStringLiteral("type='a(ssay)'")));
    EXPECT_EQ(interfaceIn(answer.arguments().value(0).toString().toUtf8()), expected);
}

TEST_F(Transport, AnswersAFailedHandlerAndGoesOn)
{
    transport.startReceiving();
    const QDBusMessage event = rawEvent(ownBusName(), QStringLiteral("test"), QStringLiteral("numb"));
    duringReceipt = [] { throw std::runtime_error("on purpose"); };
    EXPECT_EQ(call(event).arguments().value(0), QVariant(-10000));
    duringReceipt = [] { throw 1; };
    EXPECT_EQ(call(event).arguments().value(0), QVariant(-10000));
    duringReceipt = [] {};
    EXPECT_EQ(call(event).arguments().value(0), QVariant(0));
    EXPECT_EQ(events.size(), 3u);
}

TEST_F(Transport, MayStopReceivingWhileItReceives)
{
    transport.startReceiving();
    duringReceipt = [this] { transport.stopReceiving(); };
    status = 5;
    const QDBusMessage answer = call(rawEvent(ownBusName(), QStringLiteral("test"), QStringLiteral("numb")));
    EXPECT_EQ(answer.arguments().value(0), QVariant(5));
    EXPECT_FALSE(isNameOwned());
}

TEST_F(Transport, ReceivesWhileAHandlerRunsItsOwnLoop)
{
    transport.startReceiving();
    const QDBusMessage event = rawEvent(ownBusName(), QStringLiteral("test"), QStringLiteral("numb"));
    bool second = false;
    duringReceipt = [&] {
        if (events.size() == 1) {
            peer.connection().send(event);
            second = waitUntil([this] { return events.size() == 2; });
        }
    };
    EXPECT_EQ(call(event).type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(second);
}

TEST_F(Transport, OwnsTheNameAgainWhenTheBusComesBack)
{
    transport.startReceiving();
    for (SInt32 round = 1; round <= 2; ++round) {
        daemon.stop();
        ASSERT_TRUE(waitUntil([&] { return !bus.isConnected(); }));
        ASSERT_TRUE(daemon.start());
        ASSERT_TRUE(waitUntil([&] { return isNameOwned(); }));
        const BusPeer next(daemon);
        ASSERT_TRUE(
            next.connection().send(rawEvent(ownBusName(), QStringLiteral("test"), QStringLiteral("numb"),
                                            {{QStringLiteral("numb"), QStringLiteral("long"), bytesOf(round)}})));
        ASSERT_TRUE(waitUntil([&] { return events.size() == static_cast<std::size_t>(round); }));
        EXPECT_EQ(valueOf<SInt32>(events.back(), fourCharCode("numb")), round);
        EXPECT_EQ(events.back().sender, std::optional<SInt32>(QCoreApplication::applicationPid()));
    }
}

TEST_F(Transport, LinksOnceTheFirstBusAppears)
{
    daemon.stop();
    SessionBus lateBus(10ms);
    AppleEventTransport late(lateBus, [](const AppleEventContents &) { return OSErr(3); });
    late.startReceiving();
    ASSERT_FALSE(lateBus.isConnected());
    ASSERT_TRUE(daemon.start());
    ASSERT_TRUE(waitUntil([&] { return lateBus.processOf(ownBusName()).value_or(0) != 0; }));
    const BusPeer next(daemon);
    const QDBusPendingCall answer =
        next.connection().asyncCall(rawEvent(ownBusName(), QStringLiteral("test"), QStringLiteral("numb")));
    ASSERT_TRUE(waitUntil([&] { return answer.isFinished(); }));
    EXPECT_EQ(answer.reply().arguments().value(0), QVariant(3));
}

TEST_F(Transport, KnowsTheProcessOfEachSender)
{
    transport.startReceiving();
    std::vector<std::unique_ptr<ChildProcess>> senders;
    for (std::size_t count = 1; count <= 2; ++count) {
        senders.push_back(std::make_unique<ChildProcess>());
        ASSERT_TRUE(senders.back()->start(QStringLiteral(KIV_EVENT_PEER),
                                          {QStringLiteral("send"), ownBusName(), QStringLiteral("1")}));
        ASSERT_TRUE(waitUntil([&] { return events.size() == count; }));
        EXPECT_EQ(events.back().sender, std::optional<SInt32>(senders.back()->pid()));
    }
}

TEST_F(Transport, DoesNotKnowTheProcessOfASenderThatIsGone)
{
    transport.startReceiving();
    BusPeer brief(daemon);
    ASSERT_TRUE(brief.connection().send(rawEvent(ownBusName(), QStringLiteral("test"), QStringLiteral("numb"))));
    const QString name = brief.name();
    brief.leave();
    // Blocks without the event loop, so that nothing is received before the peer has gone.
    while (bus.processOf(name) != 0) {
    }
    ASSERT_TRUE(waitUntil([&] { return events.size() == 1; }));
    EXPECT_EQ(events.back().sender, std::nullopt) << "it may be any process, also the one that it says";
}

TEST_F(Transport, DoesNotKnowTheSenderWhenTheBusDoesNotSay)
{
    transport.startReceiving();
    ASSERT_TRUE(peer.connection().send(rawEvent(ownBusName(), QStringLiteral("test"), QStringLiteral("numb"))));
    // Answered after the event has gone out to the receiver, which handles nothing before its event loop runs.
    static_cast<void>(peer.connection().interface()->registeredServiceNames());
    static_cast<void>(bus.processOf(ownBusName()));
    daemon.suspend();
    QElapsedTimer time;
    time.start();
    ASSERT_TRUE(waitUntil([&] { return events.size() == 1; }));
    EXPECT_LT(time.elapsed(), 1000);
    EXPECT_EQ(events.back().sender, std::nullopt);
    daemon.resume();
}

TEST_F(Transport, StartsAndStopsReceivingWithinASecondOnABusThatIsStuck)
{
    QElapsedTimer time;
    time.start();
    daemon.suspend();
    transport.startReceiving();
    EXPECT_LT(time.restart(), 1000);
    daemon.resume();
    EXPECT_TRUE(isNameOwned()) << "the request stands";

    daemon.suspend();
    time.start();
    transport.stopReceiving();
    EXPECT_LT(time.elapsed(), 1000);
    daemon.resume();
    EXPECT_FALSE(isNameOwned());
}

TEST_F(Transport, SendsNothingOnABusThatIsStuck)
{
    transport.startReceiving();
    AppleEventContents event(numberClass, numberID);
    event.target = static_cast<SInt32>(QCoreApplication::applicationPid());
    daemon.suspend();
    EXPECT_EQ(transport.send(event), connectionInvalid);
    daemon.resume();
}

TEST_F(Transport, HandlesTwentyThousandEventsInOrder)
{
    transport.startReceiving();
    constexpr int count = 20'000;
    ChildProcess sender;
    ASSERT_TRUE(
        sender.start(QStringLiteral(KIV_EVENT_PEER), {QStringLiteral("send"), ownBusName(), QString::number(count)}));
    ASSERT_TRUE(waitUntil([&] { return events.size() == count; }, 60s));
    for (SInt32 number = 0; number < count; ++number) {
        ASSERT_EQ(valueOf<SInt32>(events[static_cast<std::size_t>(number)], fourCharCode("numb")), number);
    }
}

TEST_F(Transport, RefusesEventsOfASenderThatHasTooManyWaiting)
{
    SessionBus ownBus(10ms);
    int handled = 0;
    AppleEventTransport narrow(
        ownBus,
        [&handled](const AppleEventContents &) {
            const QDeadlineTimer end(2 * WorkInTurns::defaultMaxShareOfATurn, Qt::PreciseTimer);
            while (!end.hasExpired()) {
            }
            ++handled;
            return noErr;
        },
        1);
    narrow.startReceiving();
    const QDBusMessage event = rawEvent(ownBusName(), QStringLiteral("test"), QStringLiteral("numb"));
    const BusPeer other(daemon);
    const QDBusPendingCall first = peer.connection().asyncCall(event);
    const QDBusPendingCall waiting = peer.connection().asyncCall(event);
    const QDBusPendingCall refused = peer.connection().asyncCall(event);
    ASSERT_TRUE(peer.connection().send(event));
    static_cast<void>(peer.connection().interface()->registeredServiceNames());
    const QDBusPendingCall others = other.connection().asyncCall(event);
    // All have come, and none is handled yet, when these are answered.
    static_cast<void>(other.connection().interface()->registeredServiceNames());
    static_cast<void>(ownBus.processOf(ownBusName()));
    ASSERT_TRUE(waitUntil([&] { return refused.isFinished() && others.isFinished(); }));
    EXPECT_EQ(QDBusError(refused.reply()).type(), QDBusError::LimitsExceeded);
    for (const QDBusPendingCall &call : {first, waiting, others}) {
        EXPECT_EQ(call.reply().arguments().value(0), QVariant(0));
    }
    EXPECT_EQ(handled, 3);
}

TEST_F(Transport, AnswersOtherCallsInTurnsToo)
{
    SessionBus ownBus(10ms);
    AppleEventTransport narrow(
        ownBus,
        [](const AppleEventContents &) {
            const QDeadlineTimer end(2 * WorkInTurns::defaultMaxShareOfATurn, Qt::PreciseTimer);
            while (!end.hasExpired()) {
            }
            return noErr;
        },
        1);
    narrow.startReceiving();
    const BusPeer other(daemon);
    const QDBusMessage noSuchMethod = QDBusMessage::createMethodCall(
        ownBusName(), requestOfContract().path(), requestOfContract().interface(), QStringLiteral("Describe"));
    const QDBusPendingCall event =
        peer.connection().asyncCall(rawEvent(ownBusName(), QStringLiteral("test"), QStringLiteral("numb")));
    const QDBusPendingCall waiting = peer.connection().asyncCall(requestOfContract());
    const QDBusPendingCall refused = peer.connection().asyncCall(requestOfContract());
    static_cast<void>(peer.connection().interface()->registeredServiceNames());
    const QDBusPendingCall others = other.connection().asyncCall(noSuchMethod);
    const QDBusPendingCall refusedToOther = other.connection().asyncCall(noSuchMethod);
    // All have come, and none is handled yet, when these are answered.
    static_cast<void>(other.connection().interface()->registeredServiceNames());
    static_cast<void>(ownBus.processOf(ownBusName()));
    ASSERT_TRUE(waitUntil([&] { return waiting.isFinished() && others.isFinished() && event.isFinished(); }));
    ASSERT_TRUE(waitUntil([&] { return refused.isFinished() && refusedToOther.isFinished(); }));
    EXPECT_EQ(waiting.reply().type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(QDBusError(refused.reply()).type(), QDBusError::LimitsExceeded);
    EXPECT_EQ(QDBusError(others.reply()).type(), QDBusError::UnknownMethod);
    EXPECT_EQ(QDBusError(refusedToOther.reply()).type(), QDBusError::LimitsExceeded);
}

TEST_F(Transport, HandlesAnEventWithinMilliseconds)
{
    transport.startReceiving();
    constexpr std::size_t count = 500;
    std::vector<qint64> latencies;
    duringReceipt = [&] {
        timespec now{};
        ::clock_gettime(CLOCK_MONOTONIC, &now);
        latencies.push_back(qint64(now.tv_sec) * 1'000'000'000 + now.tv_nsec -
                            valueOf<qint64>(events.back(), fourCharCode("time")));
    };
    ChildProcess sender;
    ASSERT_TRUE(
        sender.start(QStringLiteral(KIV_EVENT_PEER), {QStringLiteral("paced"), ownBusName(), QString::number(count)}));
    ASSERT_TRUE(waitUntil([&] { return latencies.size() == count; }, 30s));
    std::sort(latencies.begin(), latencies.end());
    const qint64 median = latencies[count / 2];
    RecordProperty("median_microseconds", static_cast<int>(median / 1000));
    RecordProperty("p99_microseconds", static_cast<int>(latencies[count * 99 / 100] / 1000));
    EXPECT_LT(median, 50'000'000);
}

/// Receives calls of Send on a connection of its own and keeps them as they came.
class RawReceiver final : public QDBusVirtualObject
{
public:
    explicit RawReceiver(const QDBusConnection &connection, const QString &name)
        : m_connection(connection)
    {
        EXPECT_TRUE(m_connection.registerVirtualObject(QStringLiteral("/com/tamborel/kivune/AppleEvents"), this));
        EXPECT_TRUE(m_connection.registerService(name));
    }
    ~RawReceiver() override { m_connection.unregisterObject(QStringLiteral("/com/tamborel/kivune/AppleEvents")); }
    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override
    {
        messages.push_back(message);
        return true;
    }

    std::vector<QDBusMessage> messages;

private:
    QDBusConnection m_connection;
};

AppleEventContents numberedEvent(qint64 target)
{
    AppleEventContents event(numberClass, numberID);
    event.target = static_cast<SInt32>(target);
    const SInt32 number = 7;
    EXPECT_EQ(event.setParameter(fourCharCode("numb"), typeSInt32, &number, sizeof number), noErr);
    EXPECT_EQ(event.setParameter(0xa501ff20, fourCharCode("ptxt"), nullptr, 0), noErr);
    return event;
}

TEST_F(Transport, SendsTheAgreedMessage)
{
    const RawReceiver receiver(peer.connection(), ownBusName());
    ASSERT_EQ(transport.send(numberedEvent(QCoreApplication::applicationPid())), noErr);
    ASSERT_TRUE(waitUntil([&] { return receiver.messages.size() == 1; }));
    const QDBusMessage &message = receiver.messages.front();
    EXPECT_EQ(message.interface(), QStringLiteral("com.tamborel.kivune.AppleEvents"));
    EXPECT_EQ(message.member(), QStringLiteral("Send"));
    EXPECT_EQ(message.signature(), QStringLiteral("ssa(ssay)"));
    EXPECT_FALSE(message.isReplyRequired());
    ASSERT_EQ(message.arguments().size(), 3);
    EXPECT_EQ(message.arguments().at(0), QVariant(QStringLiteral("test")));
    EXPECT_EQ(message.arguments().at(1), QVariant(QStringLiteral("numb")));
    const QList<RawParameter> expected{{QStringLiteral("numb"), QStringLiteral("long"), bytesOf<qint32>(7)},
                                       {QString::fromLatin1("\xa5\x01\xff "), QStringLiteral("ptxt"), QByteArray()}};
    EXPECT_EQ(qdbus_cast<QList<RawParameter>>(message.arguments().at(2)), expected);
}

TEST(AppleEventMessage, StartsNoService)
{
    // A received message does not say any more how it was flagged.
    const auto message = messageOf(numberedEvent(QCoreApplication::applicationPid()));
    ASSERT_TRUE(message);
    EXPECT_FALSE(message->autoStartService());
}

TEST_F(Transport, SendsNothingToWhoReceivesNoEvents)
{
    // Everything that is on the bus for these names would come here.
    ChildProcess other;
    ASSERT_TRUE(other.start(QStringLiteral("sleep"), {QStringLiteral("100")}));
    const QString otherName = QStringLiteral("com.tamborel.kivune.p%1").arg(other.pid());
    RawReceiver impostor(peer.connection(), otherName);
    EXPECT_EQ(transport.send(numberedEvent(other.pid())), procNotFound) << "a name that another process holds";
    EXPECT_EQ(transport.sendAndWait(numberedEvent(other.pid()), 1s), procNotFound);

    EXPECT_EQ(transport.send(numberedEvent(0)), procNotFound);
    EXPECT_EQ(transport.send(numberedEvent(-1)), procNotFound);
    EXPECT_EQ(transport.send(numberedEvent(1)), procNotFound) << "runs, but has no name";
    const qint64 ended = other.pid();
    other.kill();
    EXPECT_EQ(transport.send(numberedEvent(ended)), procNotFound);

    // The bus keeps the order: what was sent before this has come when this has.
    ASSERT_TRUE(bus.connection().send(rawEvent(otherName, QStringLiteral("last"), QStringLiteral("last"))));
    ASSERT_TRUE(waitUntil([&] { return !impostor.messages.empty(); }));
    EXPECT_EQ(impostor.messages.front().arguments().at(0), QVariant(QStringLiteral("last")));
}

TEST_F(Transport, FindsATargetAgainThatHasChangedItsConnection)
{
    const qint64 self = QCoreApplication::applicationPid();
    BusPeer first(daemon);
    {
        const RawReceiver receiver(first.connection(), ownBusName());
        ASSERT_EQ(transport.send(numberedEvent(self)), noErr);
        ASSERT_TRUE(waitUntil([&] { return receiver.messages.size() == 1; }));
    }
    first.leave();
    // Behind the bus's own word that the owner has changed.
    ASSERT_TRUE(waitUntil([&] { return bus.ownerOf(ownBusName()).isEmpty(); }));
    EXPECT_EQ(transport.send(numberedEvent(self)), procNotFound);

    BusPeer second(daemon);
    const RawReceiver receiver(second.connection(), ownBusName());
    EXPECT_EQ(transport.send(numberedEvent(self)), noErr);
    second.connection().unregisterService(ownBusName());
    const RawReceiver third(peer.connection(), ownBusName());
    ASSERT_EQ(bus.ownerOf(ownBusName()), peer.name());
    EXPECT_EQ(transport.send(numberedEvent(self)), noErr);
    EXPECT_TRUE(waitUntil([&] { return !receiver.messages.empty() && !third.messages.empty(); }));
}

TEST_F(Transport, AsksNobodyAboutTheTargetOfTheLastEvent)
{
    const qint64 self = QCoreApplication::applicationPid();
    const RawReceiver receiver(peer.connection(), ownBusName());
    ASSERT_EQ(transport.send(numberedEvent(self)), noErr);
    daemon.suspend();
    EXPECT_EQ(transport.send(numberedEvent(self)), noErr) << "a question would have no answer";
    daemon.resume();
    EXPECT_TRUE(waitUntil([&] { return receiver.messages.size() == 2; }));
}

TEST_F(Transport, SendsNothingToATargetThatHasEndedThoughTheBusHasNotSaidSo)
{
    ChildProcess target;
    ASSERT_TRUE(target.start(QStringLiteral(KIV_CARBON_PEER), {QStringLiteral("receive")}));
    ASSERT_TRUE(waitUntil([&] { return target.output().contains("ready\n"); }));
    const qint64 pid = target.pid();
    ASSERT_EQ(transport.send(numberedEvent(pid)), noErr);
    daemon.suspend();
    target.kill();
    EXPECT_EQ(transport.send(numberedEvent(pid)), procNotFound);
    daemon.resume();
}

TEST_F(Transport, SaysInTimeThatTheBusIsStuckForATargetThatItDoesNotKnow)
{
    const qint64 self = QCoreApplication::applicationPid();
    const RawReceiver receiver(peer.connection(), ownBusName());
    QElapsedTimer time;
    time.start();
    daemon.suspend();
    EXPECT_EQ(transport.send(numberedEvent(self)), connectionInvalid);
    EXPECT_LT(time.elapsed(), 1000);
    daemon.resume();
    EXPECT_EQ(transport.send(numberedEvent(self)), noErr);
}

TEST_F(Transport, DoesNotMistakeSomebodyOnANewBusForTheLastTarget)
{
    const qint64 self = QCoreApplication::applicationPid();
    auto target = std::make_unique<BusPeer>(daemon);
    auto receiver = std::make_unique<RawReceiver>(target->connection(), ownBusName());
    ASSERT_EQ(transport.send(numberedEvent(self)), noErr);
    const QString targetsName = target->name();
    receiver.reset();
    target.reset();
    daemon.stop();
    ASSERT_TRUE(waitUntil([&] { return !bus.isConnected(); }));
    ASSERT_TRUE(daemon.start());
    ASSERT_TRUE(waitUntil([&] { return bus.isConnected(); }));

    // One that has come by the same unique name.
    std::vector<std::unique_ptr<BusPeer>> others;
    do {
        others.push_back(std::make_unique<BusPeer>(daemon));
        ASSERT_LT(others.size(), 100u);
    } while (others.back()->name() != targetsName);
    const RawReceiver stranger(others.back()->connection(), QStringLiteral("com.example.Stranger"));
    EXPECT_EQ(transport.send(numberedEvent(self)), procNotFound);
    ASSERT_TRUE(bus.connection().send(rawEvent(targetsName, QStringLiteral("last"), QStringLiteral("last"))));
    ASSERT_TRUE(waitUntil([&] { return !stranger.messages.empty(); }));
    EXPECT_EQ(stranger.messages.front().arguments().at(0), QVariant(QStringLiteral("last")));
}

TEST_F(Transport, RefusesAnEventThatCannotTravel)
{
    const qint64 self = QCoreApplication::applicationPid();
    EXPECT_EQ(transport.send(AppleEventContents(numberClass, numberID)), paramErr) << "no target";
    AppleEventContents event(0, numberID);
    event.target = static_cast<SInt32>(self);
    EXPECT_EQ(transport.send(event), paramErr);
    event = numberedEvent(self);
    EXPECT_EQ(event.setParameter(0x61006161, typeSInt32, nullptr, 0), noErr);
    EXPECT_EQ(transport.send(event), paramErr);
    EXPECT_EQ(transport.sendAndWait(event, 1s), paramErr);
}

TEST_F(Transport, SaysWhyNothingGoesToAProcess)
{
    using testing::ElementsAre;
    const auto self = static_cast<SInt32>(QCoreApplication::applicationPid());
    const std::string toThis = "kiv.link: nothing goes to process " + std::to_string(self) + ": ";
    ChildProcess other;
    ASSERT_TRUE(other.start(QStringLiteral("sleep"), {QStringLiteral("100")}));
    const RawReceiver impostor(peer.connection(), QStringLiteral("com.tamborel.kivune.p%1").arg(other.pid()));
    LogLines log;
    const auto linesOf = [&](const AppleEventContents &event) {
        EXPECT_NE(transport.send(event), noErr);
        std::vector<std::string> lines = log.take();
        EXPECT_NE(transport.sendAndWait(event, 1s), noErr);
        const std::vector<std::string> waiting = log.take();
        lines.insert(lines.end(), waiting.begin(), waiting.end());
        return lines;
    };
    const std::string none = "kiv.link: nothing goes to process 0: it does not run";
    EXPECT_THAT(linesOf(numberedEvent(0)), ElementsAre(none, none));
    const std::string noMessage = "kiv.link: nothing goes to process 0: this event cannot be a message";
    EXPECT_THAT(linesOf(AppleEventContents(numberClass, numberID)), ElementsAre(noMessage, noMessage));
    EXPECT_THAT(linesOf(numberedEvent(self)),
                ElementsAre(toThis + "it receives no events", toThis + "it receives no events"));
    const std::string toOther = "kiv.link: nothing goes to process " + std::to_string(other.pid()) + ": ";
    EXPECT_THAT(linesOf(numberedEvent(other.pid())),
                ElementsAre(toOther + "another has its name on the bus", toOther + "another has its name on the bus"));
    {
        BusPeer first(daemon);
        const RawReceiver receiver(first.connection(), ownBusName());
        daemon.suspend();
        const std::string silent = toThis + "the session bus is not there, or says nothing";
        EXPECT_THAT(linesOf(numberedEvent(self)), ElementsAre(silent, silent));
        daemon.resume();
    }
}

TEST_F(Transport, NeedsABusToSend)
{
    daemon.stop();
    ASSERT_TRUE(waitUntil([&] { return !bus.isConnected(); }));
    EXPECT_EQ(transport.send(numberedEvent(QCoreApplication::applicationPid())), connectionInvalid);
    EXPECT_EQ(transport.sendAndWait(numberedEvent(QCoreApplication::applicationPid()), 1s), connectionInvalid);
    EXPECT_EQ(transport.send(numberedEvent(0)), procNotFound);
}

TEST_F(Transport, GivesUpOnAnAnswerInTime)
{
    const RawReceiver silent(peer.connection(), ownBusName());
    EXPECT_EQ(transport.sendAndWait(numberedEvent(QCoreApplication::applicationPid()), 20ms), errAETimeout);
}

TEST_F(Transport, SendsToItself)
{
    transport.startReceiving();
    const AppleEventContents event = numberedEvent(QCoreApplication::applicationPid());
    EXPECT_EQ(transport.send(event), noErr);
    EXPECT_TRUE(waitUntil([&] { return events.size() == 1; }));
    status = 9;
    EXPECT_EQ(transport.sendAndWait(event, 5s), 9);
    ASSERT_EQ(events.size(), 2u);
    for (const AppleEventContents &received : events) {
        EXPECT_EQ(valueOf<SInt32>(received, fourCharCode("numb")), 7);
        EXPECT_EQ(received.sender, std::optional<SInt32>(QCoreApplication::applicationPid()));
    }
}

} // namespace
