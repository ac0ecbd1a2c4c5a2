#include "notify/feed/KivNotificationReceiver.h"

#include "notify/record/KivNotification.h"
#include "notify/record/NotificationSink.h"
#include "notify/record/UndefinedKeyException.h"
#include "notify/rules/KivNotificationProperties.h"
#include "platform/Bundle.h"
#include "platform/data/PropertyList.h"
#include "tests/support/Certificates.h"
#include "tests/support/FeedServer.h"
#include "tests/support/LogLines.h"
#include "tests/support/ProcessorTime.h"
#include "tests/support/WaitUntil.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QPointer>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <functional>
#include <vector>

namespace
{

using namespace std::chrono_literals;

/// Catches what leaves a callback of the event loop, as the agent's own application object does.
class CatchingApplication final : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject *receiver, QEvent *event) override
    {
        try {
            return QApplication::notify(receiver, event);
        } catch (const UndefinedKeyException &) {
            ++caught;
            return false;
        }
    }

    static inline int caught = 0;
};

using Ids = std::vector<std::string>;

class Sink final : public NotificationSink
{
public:
    void enqueueNotification(const std::shared_ptr<KivNotification> &record) override
    {
        EXPECT_EQ(deliveries, ends + 1) << "outside a delivery";
        ids.push_back(record->messageId().toStdString());
    }

    Ids ids;
    int deliveries = 0;
    int ends = 0;
    std::function<void()> onDelivery;

private:
    void beginDelivery() override
    {
        ++deliveries;
        if (onDelivery) {
            onDelivery();
        }
    }
    void endDelivery() noexcept override { ++ends; }
};

QByteArray feedWith(const QByteArray &id)
{
    return "<supportMessages><supportMessage><messageId>" + id + "</messageId></supportMessage></supportMessages>";
}

ScriptedAnswer answerWith(const QByteArray &body)
{
    return {.body = body};
}

QList<std::pair<QString, QString>> typed(const char *contentType)
{
    return {{QStringLiteral("Content-Type"), QString::fromLatin1(contentType)}};
}

/// The body as HTTP's "deflate" has it, which is zlib's format (RFC 9110, section 8.4.1.2).
ScriptedAnswer compressed(const QByteArray &body)
{
    constexpr qsizetype sizeInFrontOfZlibs = 4;
    return {.headers = typed("text/xml") + QList<std::pair<QString, QString>>{{QStringLiteral("Content-Encoding"),
                                                                               QStringLiteral("deflate")}},
            .body = qCompress(body).mid(sizeInFrontOfZlibs)};
}

/// While it lives, programs started from here have that variable.
class Variable final
{
public:
    Variable(const char *name, const QString &value)
        : m_name(name)
    {
        qputenv(name, value.toLocal8Bit());
    }
    ~Variable() { qunsetenv(m_name); }
    Variable(const Variable &) = delete;
    Variable &operator=(const Variable &) = delete;

private:
    const char *m_name;
};

constexpr char trustedCertificate[] = "KIV_TRUSTED_CERTIFICATE"; ///< Read by fetch_of_the_test.
constexpr char maxDuration[] = "KIV_MAX_DURATION";               ///< As well: milliseconds.

class KivNotificationReceiverTest : public testing::Test
{
protected:
    /// A receiver whose feed is a server that answers so.
    void serve(const QList<ScriptedAnswer> &answers, FeedTiming timing = {})
    {
        ASSERT_TRUE(server.start(answers));
        receiveFrom(server.address(QStringLiteral("/feed/messages")), timing);
    }

    void receiveFrom(const QString &address, FeedTiming timing = {})
    {
        const QVariantMap info{{QStringLiteral("KIVSupportMessages"), address},
                               {QStringLiteral("KIVBuildVersion"), QStringLiteral("3.2.1")},
                               {QStringLiteral("KIVBuildDate"), QStringLiteral("20110520")}};
        const QVariantMap system{{QStringLiteral("ProductVersion"), QStringLiteral("10.6.8")}};
        ASSERT_TRUE(PropertyList::writeFile(directory.filePath(QStringLiteral("Info.plist")), info,
                                            PropertyList::Writing::InPlace));
        const QString systemVersionFile = directory.filePath(QStringLiteral("SystemVersion.plist"));
        ASSERT_TRUE(PropertyList::writeFile(systemVersionFile, system, PropertyList::Writing::InPlace));
        QFile::link(QStringLiteral(KIV_FETCH_OF_THE_TEST), fetch()); // Unless it is there.
        bundle.emplace(directory.path());
        const UserDatabase nobody{.loginName = [] { return std::nullopt; },
                                  .groupMembers = [](const std::string &) { return std::vector<std::string>(); }};
        properties.emplace(*bundle, directory.path(), systemVersionFile, nobody, &QDateTime::currentDateTimeUtc);
        receiver.emplace(*properties, *bundle, sink, timing);
    }

    QString fetch() const { return directory.filePath(QStringLiteral("kivfetch")); }

    void putInPlaceOfFetch(const QByteArray &shellScript) const
    {
        QFile::remove(fetch());
        QFile file(fetch());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + shellScript + '\n');
        ASSERT_TRUE(file.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    }

    /// Sends a request and waits until it has ended.
    void receive()
    {
        receiver->receiveNextNotification();
        ASSERT_NE(receiver->connection(), nullptr);
        ASSERT_TRUE(waitUntil([this] { return !receiver->connection() || receiver->connection()->isFinished(); }));
        QCoreApplication::sendPostedEvents(&*receiver); // It may not have heard of the end yet.
        ASSERT_TRUE(waitUntil([this] { return sink.ends == sink.deliveries; }))
            << "a long document is not read to its end";
    }

    bool wasCancelled() const { return receiver->connection() && receiver->connection()->isFinished(); }

    QTemporaryDir directory;
    FeedServer server;
    std::optional<Bundle> bundle;
    std::optional<KivNotificationProperties> properties;
    Sink sink;
    std::optional<KivNotificationReceiver> receiver;
};

TEST_F(KivNotificationReceiverTest, AsksAsItsInstallationAndUser)
{
    serve({answerWith(feedWith("1"))});
    receive();
    const QList<QJsonObject> requests = server.requests();
    ASSERT_EQ(requests.size(), 1);
    EXPECT_EQ(requests.first().value(QLatin1String("line")).toString().toStdString(),
              "GET /feed/messages?product=kivunets&version=3.2.1&build_date=20110520&system=osx&sysver=10.6.8"
              "&level=user&license=paid&lastId=0&limit=5 HTTP/1.1");
}

TEST_F(KivNotificationReceiverTest, AsksForWhatFollowsTheLastMessage)
{
    serve({answerWith(feedWith("1"))});
    properties->saveLastMessID(QStringLiteral("50% a&b"));
    receive();
    ASSERT_EQ(server.requests().size(), 1);
    const QString line = server.requests().first().value(QLatin1String("line")).toString();
    EXPECT_TRUE(line.contains(QLatin1String("&license=paid&lastId=50%25%20a&b&limit=5 "))) << line.toStdString();
}

TEST_F(KivNotificationReceiverTest, HandsTheRecordsOverInTheirOrder)
{
    serve({answerWith("<supportMessages><supportMessage><messageId>2</messageId></supportMessage>"
                      "<supportMessage><messageId>1</messageId></supportMessage></supportMessages>")});
    receive();
    EXPECT_EQ(sink.ids, (Ids{"2", "1"}));
    EXPECT_EQ(sink.deliveries, 1) << "in one delivery";
    EXPECT_EQ(sink.ends, 1);
    EXPECT_EQ(receiver->connection(), nullptr);
    EXPECT_EQ(receiver->notification(), nullptr);
}

TEST_F(KivNotificationReceiverTest, TakesAnyTypeThatEndsInXml)
{
    serve({{.headers = typed("text/xml"), .body = feedWith("1")},
           {.headers = typed("application/xml"), .body = feedWith("2")},
           {.headers = {{QStringLiteral("CONTENT-TYPE"), QStringLiteral("anything/xml")}}, .body = feedWith("3")}});
    for (int i = 0; i < 3; ++i) {
        receive();
    }
    EXPECT_EQ(sink.ids, (Ids{"1", "2", "3"}));
}

TEST_F(KivNotificationReceiverTest, CancelsAnyOtherType)
{
    const QList<QList<std::pair<QString, QString>>> refused = {
        typed("text/xml; charset=utf-8"),
        typed("text/xml;"),
        typed("text/html"),
        typed("text/XML"),
        typed("application/rss+xml"),
        typed("xml"),
        {},
    };
    QList<ScriptedAnswer> answers;
    for (const auto &headers : refused) {
        answers.append({.headers = headers, .body = feedWith("0")});
    }
    answers.append(answerWith(feedWith("1")));
    serve(answers);
    for (qsizetype i = 0; i < refused.size(); ++i) {
        receive();
        EXPECT_TRUE(wasCancelled()) << i;
    }
    receive(); // Nothing of what was refused is in its way.
    EXPECT_EQ(sink.ids, (Ids{"1"}));
}

TEST_F(KivNotificationReceiverTest, CancelsAnyStatusButTwoHundred)
{
    const QList<int> refused = {201, 204, 302, 304, 400, 401, 404, 407, 500, 503};
    QList<ScriptedAnswer> answers;
    for (const int status : refused) {
        answers.append({.status = status, .body = status == 204 || status == 304 ? QByteArray() : feedWith("0")});
    }
    answers.append(answerWith(feedWith("1")));
    serve(answers);
    for (const int status : refused) {
        receive();
        EXPECT_TRUE(wasCancelled()) << status;
    }
    receive();
    EXPECT_EQ(sink.ids, (Ids{"1"}));
}

TEST_F(KivNotificationReceiverTest, ClosesTheConnectionOfACancelledRequestAndHoldsItUntilTheNext)
{
    serve({{.status = 404, .body = feedWith("0"), .mutedFrom = 10}, {.body = feedWith("1"), .gated = true}});
    receive();
    EXPECT_TRUE(waitUntil([this] { return server.closedByClient() == QList{0}; }));
    ASSERT_TRUE(wasCancelled());

    const QPointer<const QObject> cancelled = receiver->connection();
    receiver->receiveNextNotification();
    EXPECT_NE(receiver->connection(), cancelled);
    EXPECT_TRUE(waitUntil([&] { return !cancelled; }));
    server.open(1);
    EXPECT_TRUE(waitUntil([this] { return sink.ids == Ids{"1"}; }));
}

TEST_F(KivNotificationReceiverTest, FollowsARedirect)
{
    serve({{.status = 302,
            .headers = {{QStringLiteral("Location"), QStringLiteral("/moved?a=b")}},
            .body = "<html>elsewhere</html>"},
           answerWith(feedWith("1"))});
    receive();
    EXPECT_EQ(sink.ids, (Ids{"1"}));
    ASSERT_EQ(server.requests().size(), 2);
    EXPECT_EQ(server.requests().last().value(QLatin1String("line")).toString().toStdString(),
              "GET /moved?a=b HTTP/1.1");
}

TEST_F(KivNotificationReceiverTest, FollowsNoRedirectToAFileNorInCircles)
{
    QFile secret(directory.filePath(QStringLiteral("secret.xml")));
    ASSERT_TRUE(secret.open(QIODevice::WriteOnly) && secret.write(feedWith("secret")) > 0);
    secret.close();
    serve({{.status = 302, .headers = {{QStringLiteral("Location"), QStringLiteral("file://") + secret.fileName()}}},
           {.status = 302, .headers = {{QStringLiteral("Location"), QStringLiteral("/feed/messages")}}}});
    for (int i = 0; i < 2; ++i) {
        receive();
    }
    EXPECT_EQ(sink.ids, Ids());
}

TEST_F(KivNotificationReceiverTest, FetchesOverTlsFromAServerWithACertificateOfAnAuthorityThatIsTrusted)
{
    Certificates certificates(directory.path());
    const Variable trust(trustedCertificate, certificates.authority());
    ASSERT_TRUE(server.startSecurely({answerWith(feedWith("1"))}, certificates.signedOne({})));
    receiveFrom(server.address(QStringLiteral("/feed")));
    receive();
    EXPECT_EQ(sink.ids, (Ids{"1"}));
}

TEST_F(KivNotificationReceiverTest, FetchesOverTlsBehindInterimAnswersToo)
{
    Certificates certificates(directory.path());
    const Variable trust(trustedCertificate, certificates.authority());
    ASSERT_TRUE(server.startSecurely({{.body = feedWith("1"), .interim = "HTTP/1.1 103 Early Hints\r\n\r\n"}},
                                     certificates.signedOne({})));
    receiveFrom(server.address(QStringLiteral("/feed")));
    receive();
    EXPECT_EQ(sink.ids, (Ids{"1"}));
}

TEST_F(KivNotificationReceiverTest, AsksNothingOfAServerThatItCannotTrust)
{
    const QTemporaryDir elsewhere;
    Certificates trusted(directory.path());
    Certificates others(elsewhere.path());
    const Variable trust(trustedCertificate, trusted.authority());
    const std::pair<const char *, QString> kinds[] = {{"of an authority that nobody knows", others.signedOne({})},
                                                      {"signed by itself", trusted.selfSigned()}};
    for (const auto &[what, certificate] : kinds) {
        FeedServer itself;
        ASSERT_TRUE(itself.startSecurely({answerWith(feedWith("1"))}, certificate));
        receiveFrom(itself.address(QStringLiteral("/feed")));
        receive();
        EXPECT_EQ(receiver->connection(), nullptr) << what;
        EXPECT_EQ(itself.requests(), QList<QJsonObject>()) << what;
        EXPECT_EQ(sink.ids, Ids()) << what;
    }
}

TEST_F(KivNotificationReceiverTest, AsksNothingOfAServerWhoseCertificateIsNotForItOrForToday)
{
    Certificates certificates(directory.path());
    const Variable trust(trustedCertificate, certificates.authority());
    const std::pair<const char *, Certificates::Kind> kinds[] = {{"expired", {.until = "20210101000000Z"}},
                                                                 {"not valid yet", {.from = "20980101000000Z"}},
                                                                 {"of another address", {.name = "IP:127.0.0.2"}},
                                                                 {"of a name", {.name = "DNS:feed.invalid"}}};
    for (const auto &[what, kind] : kinds) {
        FeedServer itself;
        ASSERT_TRUE(itself.startSecurely({answerWith(feedWith("1"))}, certificates.signedOne(kind)));
        receiveFrom(itself.address(QStringLiteral("/feed")));
        receive();
        EXPECT_EQ(itself.requests(), QList<QJsonObject>()) << what;
        EXPECT_EQ(sink.ids, Ids()) << what;
    }
}

TEST_F(KivNotificationReceiverTest, FollowsNoRedirectFromTlsToPlainHttp)
{
    FeedServer plain;
    ASSERT_TRUE(plain.start({answerWith(feedWith("1"))}));
    Certificates certificates(directory.path());
    const Variable trust(trustedCertificate, certificates.authority());
    ASSERT_TRUE(server.startSecurely(
        {{.status = 302, .headers = {{QStringLiteral("Location"), plain.address(QStringLiteral("/feed"))}}}},
        certificates.signedOne({})));
    receiveFrom(server.address(QStringLiteral("/feed")));
    receive();
    EXPECT_EQ(server.requests().size(), 1);
    EXPECT_EQ(plain.requests(), QList<QJsonObject>());
    EXPECT_EQ(sink.ids, Ids());
}

TEST_F(KivNotificationReceiverTest, TakesABodyInPiecesOfOneByte)
{
    serve({{.body = feedWith("1"), .pieces = 1}});
    receive();
    EXPECT_EQ(sink.ids, (Ids{"1"}));
}

TEST_F(KivNotificationReceiverTest, KeepsTheBytesOfAConnectionCutInTheMiddle)
{
    const QByteArray whole = "<supportMessages><supportMessage><messageId>1</messageId></supportMessage>"
                             "<supportMessage><messageId>2</messageId></supportMessage></supportMessages>";
    const int middle = static_cast<int>(whole.lastIndexOf("<messageId>"));
    serve({{.body = whole, .cutAfter = middle}, answerWith(whole.mid(middle))});
    receive();
    EXPECT_EQ(sink.ids, Ids()); // Nothing is parsed yet.
    EXPECT_EQ(receiver->connection(), nullptr);
    receive();
    EXPECT_EQ(sink.ids, (Ids{"1", "2"}));
}

TEST_F(KivNotificationReceiverTest, GivesUpAnAnswerThatNeverComes)
{
    serve({{.gated = true}, answerWith(feedWith("1"))}, {.timeout = 200ms});
    receive();
    EXPECT_EQ(receiver->connection(), nullptr);
    receive();
    EXPECT_EQ(sink.ids, (Ids{"1"}));
}

TEST_F(KivNotificationReceiverTest, GivesUpAnAnswerThatNeverComesAfterARedirect)
{
    serve({{.status = 302, .headers = {{QStringLiteral("Location"), QStringLiteral("/moved")}}}, {.gated = true}},
          {.timeout = 200ms});
    receive();
    EXPECT_EQ(server.requests().size(), 2);
    EXPECT_EQ(receiver->connection(), nullptr);
}

TEST_F(KivNotificationReceiverTest, GivesUpAnAnswerThatFallsSilent)
{
    serve({{.body = feedWith("1"), .mutedFrom = 20}}, {.timeout = 200ms});
    receive();
    EXPECT_EQ(receiver->connection(), nullptr);
    EXPECT_EQ(sink.ids, Ids());
    EXPECT_TRUE(waitUntil([this] { return server.closedByClient() == QList{0}; }));
}

TEST_F(KivNotificationReceiverTest, WaitsForASlowAnswerThatGoesOn)
{
    const ScriptedAnswer slow{.body = feedWith("1"), .pieces = 10, .pause = 80};
    const FeedTiming timing{.timeout = 1s};
    serve({slow}, timing);
    QElapsedTimer clock;
    clock.start();
    receive();
    EXPECT_GT(clock.elapsed(), 1000) << "it was no test of the time-out";
    EXPECT_EQ(sink.ids, (Ids{"1"}));
}

TEST_F(KivNotificationReceiverTest, GivesUpAnAnswerThatTricklesInForEver)
{
    const Variable duration(maxDuration, QStringLiteral("500"));
    serve({{.body = feedWith("1").repeated(100), .pieces = 1, .pause = 10}}, {.timeout = 60s});
    receive();
    EXPECT_EQ(receiver->connection(), nullptr);
    EXPECT_TRUE(waitUntil([this] { return server.closedByClient() == QList<int>{0}; }));
    EXPECT_EQ(sink.ids, Ids());
}

TEST_F(KivNotificationReceiverTest, KillsAProgramThatWasStoppedAndCannotGiveUp)
{
    serve({answerWith(feedWith("1"))}, {.maxDuration = 2s});
    const QString process = directory.filePath(QStringLiteral("process"));
    const QString end = directory.filePath(QStringLiteral("end"));
    putInPlaceOfFetch("echo $$ > '" + process.toLocal8Bit() + "'; kill -STOP $$; : > '" + end.toLocal8Bit() + '\'');
    LogLines log;
    receive();
    EXPECT_THAT(log.take(), testing::IsSupersetOf({"kiv.feed: kivfetch does not end by itself: it is killed",
                                                   "kiv.feed: the request has failed"}));
    EXPECT_EQ(receiver->connection(), nullptr);
    QFile number(process);
    ASSERT_TRUE(number.open(QIODevice::ReadOnly)) << "it was not even started";
    const pid_t pid = number.readAll().trimmed().toInt();
    ASSERT_GT(pid, 0);
    EXPECT_TRUE(waitUntil([&] { return ::kill(pid, 0) != 0; })) << "it is still there";
    EXPECT_FALSE(QFile::exists(end)) << "it was not stopped";
    EXPECT_EQ(sink.ids, Ids());
}

TEST_F(KivNotificationReceiverTest, HasNoTimerWaitWhileNoRequestIsUnderWay)
{
    serve({{.status = 404, .gated = true}});
    receiver->receiveNextNotification();
    const QPointer<const FeedConnection> connection = receiver->connection();
    const auto timers = [&] {
        const QList<QTimer *> all = connection->findChildren<QTimer *>();
        return std::ranges::count_if(all, &QTimer::isActive);
    };
    EXPECT_EQ(timers(), 1) << "it may take for ever";
    server.open(0);
    ASSERT_TRUE(waitUntil([this] { return wasCancelled(); }));
    ASSERT_TRUE(connection) << "it is held until the next request";
    EXPECT_EQ(timers(), 0);
}

TEST_F(KivNotificationReceiverTest, FailsQuietlyWhereNobodyListens)
{
    receiveFrom(QStringLiteral("http://127.0.0.1:1/feed"));
    receive();
    EXPECT_EQ(receiver->connection(), nullptr);
    EXPECT_EQ(sink.ids, Ids());
}

TEST_F(KivNotificationReceiverTest, SendsNothingToWhatIsNoWebAddress)
{
    QFile file(directory.filePath(QStringLiteral("feed.xml")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(feedWith("1")) > 0);
    file.close();
    for (const QString &address : {QString(), QStringLiteral("feed"), QStringLiteral("file://") + file.fileName()}) {
        receiveFrom(address);
        receiver->receiveNextNotification();
        EXPECT_EQ(receiver->connection(), nullptr) << address.toStdString();
    }
}

TEST_F(KivNotificationReceiverTest, CancelsNeitherOfTwoRequestsInFlight)
{
    serve({{.body = feedWith("1"), .gated = true}, {.body = feedWith("2"), .gated = true}});
    receiver->receiveNextNotification();
    ASSERT_TRUE(waitUntil([this] { return server.requests().size() == 1; }));
    receiver->receiveNextNotification();
    ASSERT_TRUE(waitUntil([this] { return server.requests().size() == 2; }));
    server.open(1);
    ASSERT_TRUE(waitUntil([this] { return sink.ids == Ids{"2"}; }));
    server.open(0);
    EXPECT_TRUE(waitUntil([this] { return sink.ids == Ids{"2", "1"}; }));
    EXPECT_EQ(server.closedByClient(), QList<int>());
}

TEST_F(KivNotificationReceiverTest, LetsGoOfACancelledRequestWhenAnEarlierOneEnds)
{
    serve({{.body = feedWith("1"), .gated = true}, {.status = 404, .body = feedWith("2")}});
    receiver->receiveNextNotification();
    ASSERT_TRUE(waitUntil([this] { return server.requests().size() == 1; }));
    receiver->receiveNextNotification();
    ASSERT_TRUE(waitUntil([this] { return wasCancelled(); }));
    const QPointer<const QObject> cancelled = receiver->connection();
    server.open(0);
    ASSERT_TRUE(waitUntil([this] { return sink.ids == Ids{"1"}; }));
    EXPECT_EQ(receiver->connection(), nullptr);
    EXPECT_TRUE(waitUntil([&] { return !cancelled; }));
}

TEST_F(KivNotificationReceiverTest, CancelsAnEarlierRequestWithoutTheLaterOne)
{
    serve({{.status = 404, .gated = true}, {.body = feedWith("2"), .gated = true}});
    receiver->receiveNextNotification();
    ASSERT_TRUE(waitUntil([this] { return server.requests().size() == 1; }));
    const QPointer<const QObject> earlier = receiver->connection();
    receiver->receiveNextNotification();
    ASSERT_TRUE(waitUntil([this] { return server.requests().size() == 2; }));
    const QPointer<const QObject> later = receiver->connection();
    server.open(0);
    EXPECT_TRUE(waitUntil([&] { return !earlier; }));
    EXPECT_EQ(receiver->connection(), later);
    EXPECT_NE(later, nullptr);
    server.open(1);
    EXPECT_TRUE(waitUntil([this] { return sink.ids == Ids{"2"}; }));
}

TEST_F(KivNotificationReceiverTest, AppendsTheNextAnswerToAMalformedOne)
{
    const QByteArray malformed = "<supportMessages><supportMessage><messageId>1</messageId></supportMessage>";
    serve({answerWith(malformed), answerWith("</supportMessages>"), answerWith(feedWith("2"))});
    receive();
    EXPECT_EQ(sink.ids, (Ids{"1"}));
    receive(); // Now it is a document.
    EXPECT_EQ(sink.ids, (Ids{"1", "1"}));
    receive(); // And forgotten.
    EXPECT_EQ(sink.ids, (Ids{"1", "1", "2"}));
}

TEST_F(KivNotificationReceiverTest, StaysStuckBehindADocumentThatNothingCanComplete)
{
    serve({answerWith("<a><supportMessage><messageId>1</messageId></supportMessage></b>"), answerWith(feedWith("2"))});
    receive();
    receive();
    EXPECT_EQ(sink.ids, (Ids{"1", "1"}));
}

TEST_F(KivNotificationReceiverTest, KeepsTheBytesWhenAnExceptionLeavesTheParse)
{
    CatchingApplication::caught = 0;
    serve({answerWith("<a><supportMessage><messageId>1</messageId></supportMessage>"
                      "<supportMessage><unheard>of</unheard></supportMessage></a>"),
           answerWith(feedWith("2"))});
    for (int request = 1; request <= 2; ++request) {
        receive();
        EXPECT_EQ(CatchingApplication::caught, request);
        EXPECT_EQ(sink.ends, request) << "the delivery has no end";
        EXPECT_EQ(receiver->connection(), nullptr);
    }
    EXPECT_EQ(sink.ids, (Ids{"1", "1"})); // The first document's, twice.
}

TEST_F(KivNotificationReceiverTest, LeavesTheEventLoopItsTurnsInALongDocument)
{
    constexpr int messages = 1000;
    const QByteArray content = QByteArray("Many words that take some time to be measured. ").repeated(22).toBase64();
    QByteArray document = "<supportMessages>";
    for (int id = 1; id <= messages; ++id) {
        document += "<supportMessage><messageId>" + QByteArray::number(id) + "</messageId><contentData>" + content +
                    "</contentData></supportMessage>";
    }
    serve({answerWith(document + "</supportMessages>"), answerWith(feedWith("last"))});
    int turnsInBetween = 0;
    QTimer turn;
    turn.callOnTimeout([&] {
        if (!sink.ids.empty() && sink.ids.size() < messages && ++turnsInBetween == 1) {
            receiver->parseNotificationData(); // Of the same bytes: there is nothing left of them when it begins.
        }
    });
    turn.start(0);
    receiver->receiveNextNotification();
    ASSERT_TRUE(waitUntil([this] { return sink.ids.size() == messages && sink.ends == 2; }));
    EXPECT_GE(turnsInBetween, 3);
    EXPECT_EQ(sink.ids.front(), "1");
    EXPECT_EQ(sink.ids.back(), std::to_string(messages));
    EXPECT_EQ(sink.deliveries, 2);
    receive();
    EXPECT_EQ(sink.ids.back(), "last");
    EXPECT_EQ(sink.ids.size(), messages + 1U);
}

TEST_F(KivNotificationReceiverTest, TakesSixteenMebibytesAndCancelsOneByteMore)
{
    constexpr qsizetype maxBytes = qsizetype{16} * 1024 * 1024;
    const auto sized = [](const QByteArray &id, qsizetype size) {
        const QByteArray document = feedWith(id);
        return answerWith(document + QByteArray(size - document.size(), ' '));
    };
    serve({sized("1", maxBytes), sized("2", maxBytes + 1), answerWith(feedWith("3"))});
    receive();
    EXPECT_EQ(sink.ids, (Ids{"1"}));
    receive();
    EXPECT_TRUE(wasCancelled());
    EXPECT_EQ(sink.ids, (Ids{"1"}));
    receive(); // What was kept of it is gone.
    EXPECT_EQ(sink.ids, (Ids{"1", "3"}));
}

TEST_F(KivNotificationReceiverTest, TakesACompressedAnswer)
{
    serve({compressed(feedWith("1"))});
    receive();
    EXPECT_EQ(sink.ids, (Ids{"1"}));
}

TEST_F(KivNotificationReceiverTest, CountsTheBytesOfACompressedAnswerAsTheyAre)
{
    const QByteArray document = feedWith("1");
    serve({compressed(document + QByteArray(qsizetype{16} * 1024 * 1024, ' ')), answerWith(feedWith("2"))});
    receive();
    EXPECT_EQ(sink.ids, Ids());
    receive(); // What was kept of it is gone.
    EXPECT_EQ(sink.ids, (Ids{"2"}));
}

TEST_F(KivNotificationReceiverTest, CountsTheBytesKeptOfEarlierAnswers)
{
    const QByteArray half = "<a>" + QByteArray(qsizetype{9} * 1024 * 1024, ' ');
    serve({answerWith(half), answerWith(half), answerWith(feedWith("1"))});
    receive();
    EXPECT_EQ(receiver->connection(), nullptr);
    receive();
    EXPECT_TRUE(wasCancelled());
    receive();
    EXPECT_EQ(sink.ids, (Ids{"1"}));
}

TEST_F(KivNotificationReceiverTest, LeavesTheDecodingOfALongDocumentToAnotherThread)
{
    QByteArray document = "<supportMessages><supportMessage><messageId>1</messageId></supportMessage>";
    document += ("<x>" + QByteArray(1000, ' ') + "</x>").repeated(8000);
    document += "<supportMessage><messageId>2</messageId></supportMessage></supportMessages>";
    serve({answerWith(document)});
    std::chrono::nanoseconds longestTurn{};
    auto before = processorTimeOfThisThread();
    QTimer turn;
    turn.callOnTimeout([&] {
        const auto now = processorTimeOfThisThread();
        longestTurn = receiver->connection() ? longestTurn : std::max(longestTurn, now - before);
        before = now;
    });
    turn.start(0);
    receive();
    ASSERT_TRUE(waitUntil([this] { return sink.ends == 1; }, 60s)) << "so much takes long under a sanitizer";
    EXPECT_EQ(sink.ids, (Ids{"1", "2"}));
    // The same work done here, so that it does not matter how slow the machine or the build is.
    const auto beforeOpening = processorTimeOfThisThread();
    ASSERT_TRUE(FeedParser::open(document));
    const auto opening = processorTimeOfThisThread() - beforeOpening;
    EXPECT_LT(longestTurn - KivNotificationReceiver::maxShareOfATurn, opening);
}

TEST_F(KivNotificationReceiverTest, TakesNoMoreThanAFifthOfWhatAMenuMayWait)
{
    EXPECT_LE(5 * KivNotificationReceiver::maxShareOfATurn, 50ms) << "a long message comes on top";
}

TEST_F(KivNotificationReceiverTest, WaitsAtItsEndForTheThreadThatDecodes)
{
    serve({answerWith("<supportMessages><supportMessage><messageId>1</messageId></supportMessage>" +
                      ("<x>" + QByteArray(1000, ' ') + "</x>").repeated(8000) + "</supportMessages>")});
    bool hasStopped = false;
    const auto stop = [&] {
        receiver->stop();
        // The thread's last word is among them, and on a busy machine each reads no more than a few characters. They
        // take no time where nothing is posted.
        for (int round = 0; round < 100 && sink.ids.empty(); ++round) {
            QCoreApplication::sendPostedEvents(&*receiver);
        }
        EXPECT_EQ(sink.ids, (Ids{"1"}));
        hasStopped = true;
    };
    // The thread begins behind it.
    sink.onDelivery = [&] { QMetaObject::invokeMethod(&*receiver, stop, Qt::QueuedConnection); };
    receiver->receiveNextNotification();
    EXPECT_TRUE(waitUntil([&] { return hasStopped; }));
}

TEST_F(KivNotificationReceiverTest, FetchesAtOnceAndThenAtEveryInterval)
{
    serve({answerWith(feedWith("1")), answerWith(feedWith("2")), answerWith(feedWith("3"))}, {.interval = 300ms});
    QElapsedTimer clock;
    clock.start();
    receiver->recieveNotifications();
    EXPECT_NE(receiver->connection(), nullptr) << "under way before it returns";
    ASSERT_TRUE(waitUntil([this] { return sink.ids.size() == 1; }));
    ASSERT_TRUE(waitUntil([this] { return sink.ids.size() >= 3; }));
    EXPECT_GE(clock.elapsed(), 600);
    EXPECT_EQ(Ids(sink.ids.begin(), sink.ids.begin() + 3), (Ids{"1", "2", "3"}));
}

TEST_F(KivNotificationReceiverTest, FetchesDailyUnlessToldOtherwise)
{
    EXPECT_EQ(requestTimeInterval, 86400.0);
    EXPECT_EQ(FeedTiming().interval, 24h);
    EXPECT_EQ(FeedTiming().timeout, 60s);
    EXPECT_EQ(FeedTiming().maxDuration, 11min);
}

TEST_F(KivNotificationReceiverTest, SendsNoCookiesBack)
{
    serve({{.headers = typed("text/xml") + QList<std::pair<QString, QString>>{{QStringLiteral("Set-Cookie"),
                                                                               QStringLiteral("a=b; Path=/")}},
            .body = feedWith("1")},
           answerWith(feedWith("2"))});
    receive();
    receive();
    ASSERT_EQ(server.requests().size(), 2);
    EXPECT_FALSE(server.requests().last().value(QLatin1String("headers")).toObject().contains(QLatin1String("cookie")));
}

TEST_F(KivNotificationReceiverTest, FailsQuietlyWithoutTheProgramThatFetches)
{
    serve({answerWith(feedWith("1"))});
    ASSERT_TRUE(QFile::remove(fetch()));
    receive();
    EXPECT_EQ(receiver->connection(), nullptr);
    QFile other(fetch());
    ASSERT_TRUE(other.open(QIODevice::WriteOnly)); // No program at all.
    receive();
    EXPECT_EQ(receiver->connection(), nullptr);
    EXPECT_EQ(sink.ids, Ids());
}

TEST_F(KivNotificationReceiverTest, FailsQuietlyWhenAnotherProgramAnswers)
{
    serve({answerWith(feedWith("1"))});
    putInPlaceOfFetch("echo nonsense; echo '" + feedWith("1") + "'; exec sleep 60");
    LogLines log;
    receive();
    EXPECT_THAT(log.take(), testing::Contains("kiv.feed: what was run is not kivfetch: its first line has no status"));
    EXPECT_EQ(receiver->connection(), nullptr);
    EXPECT_EQ(sink.ids, Ids());
}

TEST_F(KivNotificationReceiverTest, TellsOfACrashButNotOfAnEndByTheSignalsOfASessionsEnd)
{
    const std::pair<const char *, QByteArray> cases[] = {{"SEGV", "kivfetch has crashed"}, {"TERM", ""}, {"INT", ""}};
    serve({answerWith(feedWith("1"))});
    for (const auto &[signal, said] : cases) {
        putInPlaceOfFetch(QByteArray("kill -") + signal + " $$");
        static QByteArray heard;
        heard.clear();
        const QtMessageHandler before = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &message) { heard += message.toUtf8(); });
        receive();
        qInstallMessageHandler(before);
        EXPECT_EQ(heard, said) << signal;
        EXPECT_EQ(receiver->connection(), nullptr) << signal;
    }
}

TEST_F(KivNotificationReceiverTest, KeepsNoConnectionThatHasEnded)
{
    serve({answerWith(feedWith("1"))});
    // Not receive(), which may have the end told from outside the event loop, where nothing is deleted later.
    receiver->receiveNextNotification();
    ASSERT_NE(receiver->connection(), nullptr);
    EXPECT_TRUE(waitUntil([this] { return receiver->findChildren<FeedConnection *>().isEmpty(); }));
}

TEST_F(KivNotificationReceiverTest, EndsWithARequestInFlight)
{
    serve({{.body = feedWith("1"), .mutedFrom = 5}});
    receiver->receiveNextNotification();
    ASSERT_TRUE(waitUntil([this] { return server.requests().size() == 1; }));
    receiver.reset();
    EXPECT_TRUE(waitUntil([this] { return server.closedByClient() == QList{0}; }));
    EXPECT_EQ(sink.ids, Ids());
}

} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    QApplication::setDesktopSettingsAware(false);
    CatchingApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
