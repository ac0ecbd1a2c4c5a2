#include "tests/session/support/AgentClock.h"
#include "tests/session/support/DesktopWithAgent.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FeedServer.h"
#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

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
