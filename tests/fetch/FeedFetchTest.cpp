#include "tests/support/ChildProcess.h"
#include "tests/support/FeedServer.h"
#include "tests/support/WaitUntil.h"

#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{

class FeedFetch : public testing::Test
{
protected:
    void ask(const QString &address)
    {
        ASSERT_TRUE(fetch.start(QStringLiteral(KIV_FETCH), {address, QStringLiteral("60000")}));
    }

    void waitForItsEnd()
    {
        ASSERT_TRUE(waitUntil([this] { return !fetch.isRunning(); }));
    }

    /// The same server by a name of this machine for which a proxy is asked.
    static QString notByLoopback(QString address)
    {
        return address.replace(QStringLiteral("127.0.0.1"), QStringLiteral("0.0.0.0"));
    }

    FeedServer server;
    ChildProcess fetch;
};

TEST_F(FeedFetch, WritesTheStatusTheTypeAndTheBodyAsTheyAre)
{
    ASSERT_TRUE(server.start({{.body = "<a>\n\r\n</a>"}}));
    ask(server.address(QStringLiteral("/feed")));
    waitForItsEnd();
    EXPECT_EQ(fetch.output(), "200 text/xml\n<a>\n\r\n</a>");
    EXPECT_EQ(fetch.exitCode(), 0);
}

TEST_F(FeedFetch, ReportsTheAnswerBehindARedirectOnly)
{
    for (const int status : {301, 302, 303, 307, 308}) {
        FeedServer redirecting;
        ASSERT_TRUE(redirecting.start(
            {{.status = status, .headers = {{QStringLiteral("Location"), QStringLiteral("/moved")}}, .body = "moved"},
             {.headers = {}, .body = "here"}}));
        ask(redirecting.address(QStringLiteral("/feed")));
        waitForItsEnd();
        EXPECT_EQ(fetch.output(), "200 \nhere") << status;
    }
}

TEST_F(FeedFetch, AsksTheProxyOfTheEnvironment)
{
    // Which answers in the feed's place: nobody has that name.
    ASSERT_TRUE(server.start({{.body = "<by-proxy/>"}}));
    fetch.environment.insert(QStringLiteral("http_proxy"), server.address({}));
    ask(QStringLiteral("http://feed.invalid/feed?lastId=7"));
    waitForItsEnd();
    EXPECT_EQ(fetch.output(), "200 text/xml\n<by-proxy/>");
    ASSERT_EQ(server.requests().size(), 1);
    EXPECT_EQ(server.requests().front().value(QStringLiteral("line")).toString(),
              QStringLiteral("GET http://feed.invalid/feed?lastId=7 HTTP/1.1"));
}

TEST_F(FeedFetch, AsksTheFeedItselfWhereTheEnvironmentWantsNoProxy)
{
    FeedServer proxy;
    ASSERT_TRUE(proxy.start({{.body = "<by-proxy/>"}}));
    ASSERT_TRUE(server.start({{.body = "<direct/>"}}));
    fetch.environment.insert(QStringLiteral("http_proxy"), proxy.address({}));
    fetch.environment.insert(QStringLiteral("no_proxy"), QStringLiteral("0.0.0.0"));
    ask(notByLoopback(server.address(QStringLiteral("/feed"))));
    waitForItsEnd();
    EXPECT_EQ(fetch.output(), "200 text/xml\n<direct/>");
    EXPECT_TRUE(proxy.requests().isEmpty());
}

TEST_F(FeedFetch, FailsWithoutItsProxy)
{
    ASSERT_TRUE(server.start({{.body = "<direct/>"}}));
    fetch.environment.insert(QStringLiteral("http_proxy"), QStringLiteral("http://127.0.0.1:9/"));
    ask(notByLoopback(server.address(QStringLiteral("/feed"))));
    waitForItsEnd();
    EXPECT_EQ(fetch.output(), QByteArray());
    EXPECT_EQ(fetch.exitCode(), 1);
    EXPECT_TRUE(server.requests().isEmpty());
}

TEST_F(FeedFetch, PassesOverInterimAnswersOfWhateverKind)
{
    const QByteArray processing = "HTTP/1.1 102 Processing\r\n\r\n";
    const QByteArray hints =
        "HTTP/1.1 103 Early Hints\r\nLink: </style.css>; rel=preload\r\nLocation: /style.css\r\n\r\n";
    // Not 101, which answers a wish that the request does not have.
    for (const QByteArray &interim : {QByteArray("HTTP/1.1 100 Continue\r\n\r\n"), processing, hints,
                                      QByteArray("HTTP/1.1 199 \r\n\r\n"), processing + hints, hints.repeated(20)}) {
        FeedServer hasty;
        ASSERT_TRUE(hasty.start({{.body = "<a>\n\r\n</a>", .interim = interim}}));
        ask(hasty.address(QStringLiteral("/feed?a=%20b")));
        waitForItsEnd();
        EXPECT_EQ(fetch.output(), "200 text/xml\n<a>\n\r\n</a>") << interim.constData();
        EXPECT_EQ(fetch.exitCode(), 0) << interim.constData();
        EXPECT_EQ(hasty.requests().size(), 1);
    }
}

TEST_F(FeedFetch, TellsAlsoBehindInterimAnswersAnAnswerThatIsCut)
{
    ASSERT_TRUE(server.start({{.body = "<a>lost</a>", .cutAfter = 3, .interim = "HTTP/1.1 103 Early Hints\r\n\r\n"}}));
    ask(server.address(QStringLiteral("/feed")));
    waitForItsEnd();
    EXPECT_EQ(fetch.output(), "200 text/xml\n<a>");
    EXPECT_EQ(fetch.exitCode(), 1);
}

TEST_F(FeedFetch, GivesUpWhereNothingButInterimAnswersComes)
{
    const QByteArray hints = "HTTP/1.1 103 Early Hints\r\nLink: </style.css>; rel=preload\r\n\r\n";
    ASSERT_TRUE(server.start({{.interim = hints.repeated(5000)}}));
    ask(server.address(QStringLiteral("/feed")));
    waitForItsEnd();
    EXPECT_EQ(fetch.output(), QByteArray()) << "the answer proper is behind more than anybody needs";
    EXPECT_EQ(fetch.exitCode(), 1);
}

TEST_F(FeedFetch, TakesHeadsOf256KibibytesAndNoMore)
{
    constexpr qsizetype maxHeadBytes = qsizetype{256} * 1024;
    constexpr qsizetype moreThanTheHeadOfTheAnswerProper = 200;
    const QByteArray start = "HTTP/1.1 103 Early Hints\r\nLink: ";
    const QByteArray end = "\r\n\r\n";
    for (const bool isTooMuch : {false, true}) {
        QByteArray interim;
        qsizetype left = isTooMuch ? maxHeadBytes : maxHeadBytes - moreThanTheHeadOfTheAnswerProper;
        for (int heads = 32; heads > 0; --heads) {
            const qsizetype size = left / heads;
            interim += start + QByteArray(size - start.size() - end.size(), 'x') + end;
            left -= size;
        }
        FeedServer talkative;
        ASSERT_TRUE(talkative.start({{.body = "<a/>", .interim = interim}}));
        ask(talkative.address(QStringLiteral("/feed")));
        waitForItsEnd();
        EXPECT_EQ(fetch.output(), isTooMuch ? "" : "200 text/xml\n<a/>") << interim.size();
        EXPECT_EQ(fetch.exitCode(), isTooMuch ? 1 : 0) << interim.size();
    }
}

TEST_F(FeedFetch, TakesARedirectWithoutAPlaceForTheAnswerWhateverAnInterimAnswerNames)
{
    const QByteArray hints = "HTTP/1.1 103 Early Hints\r\nLocation: /style.css\r\n\r\n";
    for (const QByteArray &interim : {QByteArray(), hints}) {
        FeedServer vague;
        ASSERT_TRUE(vague.start({{.status = 302, .body = "somewhere", .interim = interim}}));
        ask(vague.address(QStringLiteral("/feed")));
        waitForItsEnd();
        EXPECT_EQ(fetch.output(), "302 text/xml\nsomewhere") << interim.constData();
        EXPECT_EQ(fetch.exitCode(), 0) << interim.constData();
        EXPECT_EQ(vague.requests().size(), 1) << interim.constData();
    }
}

TEST_F(FeedFetch, TellsAnAnswerThatIsCutFromOneThatIsWhole)
{
    ASSERT_TRUE(server.start({{.body = "<a>lost</a>", .cutAfter = 3}}));
    ask(server.address(QStringLiteral("/feed")));
    waitForItsEnd();
    EXPECT_EQ(fetch.output(), "200 text/xml\n<a>");
    EXPECT_EQ(fetch.exitCode(), 1);
}

TEST_F(FeedFetch, SaysWhyThereIsNoWholeAnswerWhenAsked)
{
    for (const bool isAsked : {true, false}) {
        FeedServer cutting;
        ASSERT_TRUE(cutting.start({{.body = "<a>lost</a>", .cutAfter = 3}}));
        fetch.process().setProcessChannelMode(QProcess::SeparateChannels);
        QStringList arguments{cutting.address(QStringLiteral("/feed")), QStringLiteral("60000")};
        if (isAsked) {
            arguments.prepend(QStringLiteral("-v"));
        }
        ASSERT_TRUE(fetch.start(QStringLiteral(KIV_FETCH), arguments));
        waitForItsEnd();
        const QByteArray said = fetch.process().readAllStandardError();
        EXPECT_EQ(said.startsWith("kivfetch: no whole answer: "), isAsked) << said.constData();
        EXPECT_EQ(said.count('\n'), isAsked ? 1 : 0) << said.constData();
        EXPECT_EQ(fetch.exitCode(), 1);
    }
}

TEST_F(FeedFetch, EndsWithItsAsker)
{
    ASSERT_TRUE(server.start({{.gated = true}}));
    ask(server.address(QStringLiteral("/feed")));
    ASSERT_TRUE(waitUntil([this] { return server.requests().size() == 1; }));
    EXPECT_TRUE(fetch.isRunning());
    fetch.closeInput();
    waitForItsEnd();
    EXPECT_EQ(fetch.exitCode(), 1);
}

/// The headers in the manual page, by their names in lower case; those that are in italics are not given word for
/// word.
QMap<QString, QString> headersInTheManual()
{
    QFile page(QStringLiteral(KIV_MANUAL_PAGE));
    EXPECT_TRUE(page.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(page.readAll()).replace(QLatin1String("\\-"), QLatin1String("-"));
    const QRegularExpression line(QStringLiteral("^([A-Z][A-Za-z-]+): (.+)$"), QRegularExpression::MultilineOption);
    QMap<QString, QString> headers;
    for (auto found = line.globalMatch(text); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        headers.insert(match.captured(1).toLower(), match.captured(2));
    }
    return headers;
}

TEST_F(FeedFetch, SendsTheHeadersOfTheManualPageAndNoOthers)
{
    const QMap<QString, QString> told = headersInTheManual();
    fetch.environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_DE.UTF-8"));
    ASSERT_TRUE(server.start({{.body = "<a/>"}}));
    ask(server.address(QStringLiteral("/feed")));
    waitForItsEnd();
    ASSERT_EQ(server.requests().size(), 1);
    const QJsonObject sent = server.requests().front().value(QLatin1String("headers")).toObject();
    EXPECT_EQ(sent.keys(), told.keys());
    for (auto header = told.begin(); header != told.end(); ++header) {
        const QString value = sent.value(header.key()).toString();
        if (header.value().contains(u'\\')) {
            EXPECT_FALSE(value.isEmpty()) << header.key().toStdString();
        } else {
            EXPECT_EQ(value, header.value()) << header.key().toStdString();
        }
    }
    EXPECT_EQ(sent.value(QLatin1String("accept-language")).toString(), QStringLiteral("de-DE,en,*"));
}

TEST_F(FeedFetch, TellsAProxyNoMore)
{
    ASSERT_TRUE(server.start({{.body = "<by-proxy/>"}}));
    fetch.environment.insert(QStringLiteral("http_proxy"), server.address({}));
    ask(QStringLiteral("http://feed.invalid/feed"));
    waitForItsEnd();
    ASSERT_EQ(server.requests().size(), 1);
    EXPECT_EQ(server.requests().front().value(QLatin1String("headers")).toObject().keys(), headersInTheManual().keys());
}

TEST_F(FeedFetch, TellsAProxyOnTheWayToASecureFeedOnlyWhereItIs)
{
    ASSERT_TRUE(server.start({{.status = 502}}));
    fetch.environment.insert(QStringLiteral("https_proxy"), server.address({}));
    ask(QStringLiteral("https://feed.invalid/feed?lastId=7"));
    waitForItsEnd();
    EXPECT_EQ(fetch.output(), QByteArray());
    EXPECT_EQ(fetch.exitCode(), 1);
    ASSERT_EQ(server.requests().size(), 1);
    EXPECT_EQ(server.requests().front().value(QLatin1String("line")).toString(),
              QStringLiteral("CONNECT feed.invalid:443 HTTP/1.1"));
    EXPECT_EQ(server.requests().front().value(QLatin1String("headers")).toObject().keys(),
              (QStringList{QStringLiteral("host"), QStringLiteral("user-agent")}));
}

TEST_F(FeedFetch, AsksNoProxyForThisMachine)
{
    ASSERT_TRUE(server.start({{.body = "<direct/>"}}));
    fetch.environment.insert(QStringLiteral("http_proxy"), QStringLiteral("http://127.0.0.1:9/"));
    ask(server.address(QStringLiteral("/feed")));
    waitForItsEnd();
    EXPECT_EQ(fetch.output(), "200 text/xml\n<direct/>");
}

TEST_F(FeedFetch, AsksNothingButTheWeb)
{
    for (const char *address : {"file:///etc/passwd", "ftp://127.0.0.1/", "nonsense", "", "http://"}) {
        ask(QString::fromLatin1(address));
        waitForItsEnd();
        EXPECT_EQ(fetch.output(), QByteArray()) << address;
        EXPECT_EQ(fetch.exitCode(), 1) << address;
    }
}

TEST_F(FeedFetch, DropsTheBodyOfARedirectInPieces)
{
    ASSERT_TRUE(server.start({{.status = 302,
                               .headers = {{QStringLiteral("location"), QStringLiteral("/moved")}},
                               .body = "moved",
                               .pieces = 1},
                              {.body = "here"}}));
    ask(server.address(QStringLiteral("/feed")));
    waitForItsEnd();
    EXPECT_EQ(fetch.output(), "200 text/xml\nhere");
}

TEST_F(FeedFetch, TakesAnAddressAndATimeOutOnly)
{
    const QString address = QStringLiteral("http://127.0.0.1:9/");
    const QString minute = QStringLiteral("60000");
    for (const QStringList &arguments :
         {QStringList{}, QStringList{address}, QStringList{address, minute, minute},
          QStringList{QStringLiteral("-v"), address}, QStringList{QStringLiteral("-x"), address, minute},
          QStringList{address, QStringLiteral("soon")}, QStringList{address, QStringLiteral("60s")},
          QStringList{address, QString()}, QStringList{address, QStringLiteral("-1")},
          QStringList{address, QStringLiteral("99999999999")}}) {
        fetch.process().setProcessChannelMode(QProcess::SeparateChannels);
        ASSERT_TRUE(fetch.start(QStringLiteral(KIV_FETCH), arguments));
        waitForItsEnd();
        const std::string given = arguments.join(u' ').toStdString();
        EXPECT_EQ(fetch.exitCode(), 2) << given;
        EXPECT_EQ(fetch.process().readAllStandardError(), "usage: kivfetch [-v] ADDRESS MILLISECONDS\n") << given;
        EXPECT_EQ(fetch.output(), QByteArray()) << given;
    }
    ASSERT_TRUE(fetch.start(QStringLiteral(KIV_FETCH), {address, QStringLiteral("0")}));
    waitForItsEnd();
    EXPECT_EQ(fetch.exitCode(), 1) << "no time at all is a time";
}

} // namespace
