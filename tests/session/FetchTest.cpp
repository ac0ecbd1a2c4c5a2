#include "platform/files/FileDescriptor.h"
#include "tests/session/support/AgentClock.h"
#include "tests/session/support/DesktopWithAgent.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FeedServer.h"
#include "tests/support/WaitUntil.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace std::chrono_literals;

TEST(FetchDuration, IsTenMinutesAtTheMostHoweverThePatienceWithSilence)
{
    FeedServer server;
    ASSERT_TRUE(server.start({{.body = "<a>lost</a>", .gated = true, .mutedFrom = 3}}));
    AgentClock clock;
    ChildProcess fetch;
    clock.addTo(fetch.environment);
    // A sanitizer's run time wants to be the first library of all.
    fetch.environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
    const QString anHour = QStringLiteral("3600000");
    ASSERT_TRUE(fetch.start(QStringLiteral(KIV_FETCH), {server.address(QStringLiteral("/feed")), anHour}));
    ASSERT_TRUE(waitUntil([&] { return server.requests().size() == 1; }));
    clock.advance(9min + 50s);
    server.open(0);
    EXPECT_TRUE(waitUntil([&] { return fetch.output() == "200 text/xml\n<a>"; })) << "it has given up too soon";
    clock.advance(15s);
    EXPECT_TRUE(waitUntil([&] { return !fetch.isRunning(); })) << "it goes on for more than ten minutes";
    EXPECT_EQ(fetch.exitCode(), 1);
}

TEST(FetchSilence, IsThatOfTheServerAndNotOfTheReader)
{
    FeedServer server;
    const QByteArray body(qsizetype{300} * 1024, ' ');
    ASSERT_TRUE(server.start({{.body = body}}));
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("output"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    const FileDescriptor reader(::open(QFile::encodeName(path).constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
    AgentClock clock;
    ChildProcess fetch;
    clock.addTo(fetch.environment);
    fetch.environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
    fetch.process().setStandardOutputFile(path);
    ASSERT_TRUE(
        fetch.start(QStringLiteral(KIV_FETCH), {server.address(QStringLiteral("/feed")), QStringLiteral("60000")}));
    const auto isFull = [&] {
        pollfd output{reader.number(), POLLOUT, 0};
        return ::poll(&output, 1, 0) == 0;
    };
    ASSERT_TRUE(waitUntil(isFull));
    clock.advance(61s);
    EXPECT_FALSE(waitUntil([&] { return !fetch.isRunning(); }, 500ms))
        << "it takes its reader's silence for the server's";

    QByteArray received;
    const auto readOn = [&] {
        QByteArray some(qsizetype{64} * 1024, '\0');
        for (ssize_t count = 0; (count = ::read(reader.number(), some.data(), some.size())) > 0;) {
            received += some.first(count);
        }
    };
    EXPECT_TRUE(waitUntil([&] {
        readOn();
        return !fetch.isRunning();
    }));
    readOn();
    EXPECT_EQ(fetch.exitCode(), 0);
    EXPECT_TRUE(received == "200 text/xml\n" + body) << received.size() << " bytes have come";
}

class Fetch : public DesktopWithAgent
{
protected:
    void SetUp() override
    {
        DesktopWithAgent::SetUp();
        ASSERT_TRUE(server.start({{.body = "<a/>", .mutedFrom = 0}}));
        agent->feed = server.address(QStringLiteral("/feed"));
    }

    FeedServer server;
};

TEST_F(Fetch, IsOverBeforeTheNextOneBegins)
{
    AgentClock clock;
    clock.addTo(agent->environment);
    ASSERT_TRUE(agent->startAndDock());
    ASSERT_TRUE(waitUntil([&] { return server.requests().size() == 1; }));
    const auto isGivenUp = [&] { return server.closedByClient() == QList<int>{0}; };
    // The head of the answer may come in the first of these minutes, and begin another.
    for (int minute = 0; minute < 3 && !waitUntil(isGivenUp, 2s); ++minute) {
        clock.advance(61s);
    }
    EXPECT_TRUE(isGivenUp()) << "it waits for ever";
    clock.advance(24h);
    EXPECT_TRUE(waitUntil([&] { return server.requests().size() == 2; }));
}

TEST_F(Fetch, EndsWithTheAgentHoweverThatEnds)
{
    ASSERT_TRUE(agent->startAndDock());
    ASSERT_TRUE(waitUntil([&] { return server.requests().size() == 1; }));
    agent->process().kill();
    EXPECT_TRUE(waitUntil([&] { return server.closedByClient() == QList<int>{0}; }));
}

} // namespace
