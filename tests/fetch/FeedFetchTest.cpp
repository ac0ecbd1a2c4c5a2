#include "tests/support/ChildProcess.h"
#include "tests/support/FeedServer.h"
#include "tests/support/WaitUntil.h"

#include <QFile>
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

    /// The same server by a name of this machine for which Qt would go to a proxy.
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
        fetch.environment.insert(QStringLiteral("QT_LOGGING_RULES"),
                                 isAsked ? QStringLiteral("kiv.feed=true") : QString());
        ask(cutting.address(QStringLiteral("/feed")));
        waitForItsEnd();
        const QByteArray said = fetch.process().readAllStandardError();
        EXPECT_EQ(said.startsWith("kivfetch: kiv.feed: no whole answer: \""), isAsked) << said.constData();
        EXPECT_EQ(said.isEmpty(), !isAsked) << said.constData();
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

TEST_F(FeedFetch, EndsWithItsAskerThoughANameIsStillLookedUp)
{
    const QTemporaryDir directory;
    const QString asked = directory.filePath(QStringLiteral("asked"));
    fetch.environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(KIV_SLOW_NAMES));
    fetch.environment.insert(QStringLiteral("KIV_LOOKUP_FILE"), asked);
    // A sanitizer's run time wants to be the first library of all.
    fetch.environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
    ask(QStringLiteral("http://feed.invalid/"));
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(asked); }));
    EXPECT_TRUE(fetch.isRunning());
    fetch.closeInput();
    waitForItsEnd();
    EXPECT_EQ(fetch.exitCode(), 1);
}

TEST_F(FeedFetch, WritesWhatQtHasToSayToStandardErrorUnderItsName)
{
    ASSERT_TRUE(server.start({{.body = "<a/>"}}));
    fetch.process().setProcessChannelMode(QProcess::SeparateChannels);
    fetch.environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("*=true"));
    ask(server.address(QStringLiteral("/feed")));
    waitForItsEnd();
    const QList<QByteArray> lines = fetch.process().readAllStandardError().trimmed().split('\n');
    for (const QByteArray &line : lines) {
        EXPECT_TRUE(line.startsWith("kivfetch: ")) << line.constData();
    }
    EXPECT_EQ(fetch.output(), "200 text/xml\n<a/>");
}

TEST_F(FeedFetch, TakesAnAddressAndATimeOutOnly)
{
    const QString address = QStringLiteral("http://127.0.0.1:9/");
    const QString minute = QStringLiteral("60000");
    for (const QStringList &arguments :
         {QStringList{}, QStringList{address}, QStringList{address, minute, minute},
          QStringList{address, QStringLiteral("soon")}, QStringList{address, QStringLiteral("60s")},
          QStringList{address, QString()}, QStringList{address, QStringLiteral("-1")},
          QStringList{address, QStringLiteral("99999999999")}}) {
        fetch.process().setProcessChannelMode(QProcess::SeparateChannels);
        ASSERT_TRUE(fetch.start(QStringLiteral(KIV_FETCH), arguments));
        waitForItsEnd();
        const std::string given = arguments.join(u' ').toStdString();
        EXPECT_EQ(fetch.exitCode(), 2) << given;
        EXPECT_EQ(fetch.process().readAllStandardError(), "usage: kivfetch ADDRESS MILLISECONDS\n") << given;
        EXPECT_EQ(fetch.output(), QByteArray()) << given;
    }
    ASSERT_TRUE(fetch.start(QStringLiteral(KIV_FETCH), {address, QStringLiteral("0")}));
    waitForItsEnd();
    EXPECT_EQ(fetch.exitCode(), 1) << "no time at all is a time";
}

} // namespace
