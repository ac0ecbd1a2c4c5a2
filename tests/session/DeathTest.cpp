#include "tests/session/support/Service.h"
#include "tests/session/support/SessionManager.h"
#include "tests/session/support/SessionWithMessages.h"

#include <QDir>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <sys/resource.h>

namespace
{

using namespace std::chrono_literals;

using Entries = MessageCache::Entries;

/// What the agent depends on dies, or takes nothing more, while one message is shown and others wait.
class Death : public SessionWithMessages
{
protected:
    bool startWithMessages()
    {
        return start({{{.id = "1", .repeat = 2}, {.id = "2", .repeat = 2}, {.id = "3", .repeat = 2}}});
    }

    /// The one pop-up on the screen, whatever else the agent shows.
    [[nodiscard]] std::optional<XWindow> shown()
    {
        for (const XWindow &window : agent->freeWindows()) {
            if (window.geometry.width() == 403) {
                return window;
            }
        }
        return std::nullopt;
    }
    /// Closes the pop-up for good and lets time pass until the next one must be there.
    bool nextFollows(const XWindow &before)
    {
        click(before, DoNotRemindMeLater);
        EXPECT_TRUE(waitUntil([&] { return !shown(); })) << "it stays";
        clock.advance(15min);
        return waitUntil([this] { return shown().has_value(); });
    }

    /// Makes every file that the running agent writes end at `bytes`, as on a full disk.
    void limitFiles(rlim_t bytes)
    {
        rlimit limit{};
        const auto pid = static_cast<pid_t>(agent->pid());
        ASSERT_EQ(::prlimit(pid, RLIMIT_FSIZE, nullptr, &limit), 0);
        limit.rlim_cur = bytes;
        ASSERT_EQ(::prlimit(pid, RLIMIT_FSIZE, &limit, nullptr), 0);
    }
};

TEST_F(Death, OfTheTrayHostLeavesThePopUpAndThoseBehindItAndTheNextComesWithoutIt)
{
    ASSERT_TRUE(startWithMessages());
    const std::optional<XWindow> first = popUp();
    ASSERT_TRUE(first);
    desktop.stopPanel();
    ASSERT_TRUE(waitUntil([this] { return agent->freeWindows().size() == 2; })) << "the item does not show";
    ASSERT_TRUE(shown());
    EXPECT_EQ(*shown(), *first);
    EXPECT_TRUE(nextFollows(*first));

    ASSERT_TRUE(desktop.startPanel());
    ASSERT_TRUE(waitUntil([this] { return agent->isDocked(); }));
    const std::optional<XWindow> second = popUp();
    ASSERT_TRUE(second);
    EXPECT_TRUE(nextFollows(*second));
    EXPECT_EQ(cache(), Entries{"3x2"});
}

TEST_F(Death, OfTheWindowManagerLeavesThePopUpWhereItIsAndTheNextComesWithoutIt)
{
    ASSERT_TRUE(startWithMessages());
    const std::optional<XWindow> first = popUp();
    ASSERT_TRUE(first);
    ASSERT_TRUE(desktop.stopWindowManager());
    EXPECT_FALSE(waitUntil([&] { return shown() != first; }, 300ms));
    ASSERT_TRUE(nextFollows(*first));
    EXPECT_EQ(shown()->geometry, first->geometry);

    ASSERT_TRUE(desktop.startWindowManager());
    EXPECT_FALSE(waitUntil([&] { return !shown() || shown()->geometry != first->geometry; }, 300ms));
    EXPECT_TRUE(waitUntil([this] { return agent->isDocked(); }, 30s));
    EXPECT_EQ(cache(), (Entries{"2x2", "3x2"}));
}

TEST_F(Death, OfTheBusLeavesTheHintsThatWait)
{
    ASSERT_TRUE(start({}));
    Service service(desktop);
    ASSERT_TRUE(service.attach(*agent));
    const QImage off = agent->itemPicture();
    service.send("hint First");
    service.send("hint Second");
    service.send("flags 6"); // Whoever shows that has had the hints.
    ASSERT_TRUE(waitUntil([&] { return agent->itemPicture() != off; }));
    std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);

    desktop.bus().stop();
    clickClose(*window);
    ASSERT_TRUE(popUpIsAnother(*window)) << "the second is lost";
    window = popUp();
    ASSERT_TRUE(window);
    ASSERT_TRUE(desktop.bus().start());
    clock.advance(5s);
    Service next(desktop);
    ASSERT_TRUE(next.attach(*agent));
    next.send("hint Third");
    next.send("flags 2");
    ASSERT_TRUE(waitUntil([&] { return agent->itemPicture() == off; }));
    clickClose(*window);
    ASSERT_TRUE(popUpIsAnother(*window)) << "the third is lost";
}

TEST_F(Death, OfTheXServerEndsTheAgentAtOnceAndTheNextSessionShowsWhatWaited)
{
    ASSERT_TRUE(startWithMessages());
    ASSERT_TRUE(popUp());
    ASSERT_TRUE(cacheFile().becomes({"1x2", "2x2", "3x2"}));
    desktop.stopServer();
    ASSERT_TRUE(waitUntil([this] { return !agent->process().isRunning(); }, 5s)) << "it lives on without a screen";
    EXPECT_EQ(agent->process().exitCode(), EXIT_FAILURE) << "it has crashed";
    EXPECT_EQ(cache(), (Entries{"1x2", "2x2", "3x2"}));

    ASSERT_TRUE(desktop.start());
    ASSERT_TRUE(desktop.startWindowManager());
    ASSERT_TRUE(desktop.startPanel());
    agent->environment.insert(desktop.environment());
    clock.addTo(agent->environment);
    clock.advance(5h); // None is due again before.
    ASSERT_TRUE(agent->startAndDock());
    clock.advance(15min);
    const std::optional<XWindow> first = popUp();
    ASSERT_TRUE(first);
    EXPECT_TRUE(nextFollows(*first));
    EXPECT_EQ(cache(), (Entries{"2x2", "3x2"}));
}

TEST_F(Death, OfTheSessionLeavesTheMessageThatWasOnTheScreen)
{
    ASSERT_TRUE(start({{{.id = "1", .repeat = 0}, {.id = "2", .repeat = 0}}}));
    ASSERT_TRUE(popUp());
    ASSERT_TRUE(cacheFile().becomes({"1x0", "2x0"}));
    agent->process().terminate();
    ASSERT_TRUE(waitUntil([this] { return !agent->process().isRunning(); }));
    EXPECT_EQ(agent->process().exitCode(), EXIT_SUCCESS);
    EXPECT_EQ(cache(), (Entries{"1x0", "2x0"})) << "nobody has closed it";
}

TEST_F(Death, OfTheSessionLeavesTheOnlyMessageThoughTheFeedSendsItOnce)
{
    setPreferences(1, 4, 0);
    ASSERT_TRUE(start({{{.id = "1", .repeat = 2}}}));
    ASSERT_TRUE(popUp());
    agent->process().terminate();
    ASSERT_TRUE(waitUntil([this] { return !agent->process().isRunning(); }));
    EXPECT_EQ(agent->process().exitCode(), EXIT_SUCCESS);

    clock.advance(5h);
    ASSERT_TRUE(agent->startAndDock());
    ASSERT_TRUE(waitUntil([this] { return feed.requests().size() == 2; }));
    EXPECT_TRUE(feed.requests().last().value(QLatin1String("line")).toString().contains(QLatin1String("&lastId=1&")));
    clock.advance(61s);
    const std::optional<XWindow> again = popUp();
    ASSERT_TRUE(again);
    click(*again, DoNotRemindMeLater);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_EQ(cache(), Entries{});
}

TEST_F(Death, OfTheSessionLeavesNoFileWhenNoMessageWaits)
{
    ASSERT_TRUE(start({}));
    agent->process().terminate();
    ASSERT_TRUE(waitUntil([this] { return !agent->process().isRunning(); }));
    EXPECT_FALSE(QFileInfo::exists(cacheFile().path()));
}

TEST_F(Death, OfTheSessionIsNotHeldUpByAHint)
{
    ASSERT_TRUE(start({}));
    Service service(desktop);
    ASSERT_TRUE(service.attach(*agent));
    service.send("hint Good night");
    ASSERT_TRUE(popUp());
    agent->process().terminate();
    ASSERT_TRUE(waitUntil([this] { return !agent->process().isRunning(); }));
    EXPECT_EQ(agent->process().exitCode(), EXIT_SUCCESS);
}

TEST_F(Death, OfTheSessionByItsManagerIsNotHeldUpByAHint)
{
    SessionManager manager;
    manager.addTo(agent->environment);
    ASSERT_TRUE(start({}));
    Service service(desktop);
    ASSERT_TRUE(service.attach(*agent));
    service.send("hint Good night");
    ASSERT_TRUE(popUp());
    ASSERT_TRUE(manager.logOut());
    ASSERT_TRUE(waitUntil([this] { return !agent->process().isRunning(); })) << "the log-out hangs";
    EXPECT_EQ(agent->process().exitCode(), EXIT_SUCCESS);
    EXPECT_TRUE(agent->standardError().isEmpty()) << agent->standardError().constData();
}

TEST_F(Death, OfTheSessionByItsManagerLeavesTheMessageThatWasOnTheScreen)
{
    SessionManager manager;
    manager.addTo(agent->environment);
    ASSERT_TRUE(start({{{.id = "1", .repeat = 0}}}));
    ASSERT_TRUE(popUp());
    ASSERT_TRUE(manager.logOut());
    ASSERT_TRUE(waitUntil([this] { return !agent->process().isRunning(); }));
    EXPECT_EQ(agent->process().exitCode(), EXIT_SUCCESS);
    EXPECT_EQ(cache(), Entries{"1x0"}) << "nobody has closed it";
}

TEST_F(Death, OfTheSessionManagerIsTheEndOfTheSession)
{
    SessionManager manager;
    manager.addTo(agent->environment);
    ASSERT_TRUE(start({{{.id = "1", .repeat = 0}}}));
    ASSERT_TRUE(popUp());
    ASSERT_TRUE(manager.die());
    ASSERT_TRUE(waitUntil([this] { return !agent->process().isRunning(); }));
    EXPECT_EQ(agent->process().exitCode(), EXIT_SUCCESS);
    EXPECT_EQ(cache(), Entries{"1x0"});
    EXPECT_TRUE(agent->standardError().isEmpty()) << agent->standardError().constData();
}

TEST_F(Death, OfTheSessionThatIsOnlyThoughtOfLeavesThePopUpAndTheMenu)
{
    SessionManager manager;
    manager.addTo(agent->environment);
    ASSERT_TRUE(startWithMessages());
    const std::optional<XWindow> first = popUp();
    ASSERT_TRUE(first);
    ASSERT_TRUE(agent->openMenu());
    const QList<XWindow> before = agent->freeWindows();
    ASSERT_TRUE(manager.saveState());
    ASSERT_TRUE(manager.beginLogOutAndCancel());
    EXPECT_FALSE(waitUntil([&] { return agent->freeWindows().size() < before.size(); }, 300ms)) << "it closes windows";
    EXPECT_EQ(cache(), (Entries{"1x2", "2x2", "3x2"}));
}

TEST_F(Death, OfAllRoomOnTheDiskLeavesTheFileAsItWasUntilThereIsRoomAgain)
{
    // Beyond its limit a write fails with a signal, too, which a full disk does not send.
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    const bool started = startWithMessages();
    std::signal(SIGXFSZ, before);
    ASSERT_TRUE(started);
    const std::optional<XWindow> first = popUp();
    ASSERT_TRUE(first);
    ASSERT_TRUE(cacheFile().becomes({"1x2", "2x2", "3x2"}));
    limitFiles(100);
    ASSERT_TRUE(nextFollows(*first)) << "it does not go on";
    EXPECT_EQ(cache(), (Entries{"1x2", "2x2", "3x2"})) << "the old file is not whole";
    EXPECT_EQ(QDir(QFileInfo(cacheFile().path()).path()).entryList(QDir::Files | QDir::Hidden).size(), 1)
        << "a half-written file is left";

    limitFiles(RLIM_INFINITY);
    ASSERT_TRUE(nextFollows(*shown()));
    EXPECT_EQ(cache(), Entries{"3x2"}) << "the write is not made good";
    EXPECT_EQ(agent->standardError().count("cannot save the messages"), 1) << agent->standardError().constData();
}

TEST_F(Death, OfTheHomeFolderIsMadeGoodWithTheNextMessageThatCloses)
{
    ASSERT_TRUE(startWithMessages());
    const std::optional<XWindow> first = popUp();
    ASSERT_TRUE(first);
    ASSERT_TRUE(cacheFile().becomes({"1x2", "2x2", "3x2"}));
    ASSERT_TRUE(QDir(desktop.environment().value(QStringLiteral("HOME"))).removeRecursively());
    ASSERT_TRUE(nextFollows(*first));
    EXPECT_EQ(cache(), (Entries{"2x2", "3x2"}));
}

TEST_F(Death, OfAHomeFolderThatTakesNothingLeavesTheMessages)
{
    // Nobody can make a file there, root included.
    agent->environment.insert(QStringLiteral("HOME"), QStringLiteral("/proc"));
    ASSERT_TRUE(startWithMessages());
    const std::optional<XWindow> first = popUp();
    ASSERT_TRUE(first);
    ASSERT_TRUE(nextFollows(*first));
    EXPECT_TRUE(nextFollows(*shown()));
    EXPECT_EQ(agent->standardError().count("cannot save the messages"), 1) << agent->standardError().constData();
}

} // namespace
