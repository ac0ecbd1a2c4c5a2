#include "tests/session/support/DesktopWithAgent.h"
#include "tests/session/support/HostileClient.h"
#include "tests/session/support/SessionManager.h"
#include "tests/support/FakePortal.h"
#include "tests/support/ProcessMemory.h"
#include "tests/support/SilentSocket.h"
#include "tests/support/StallingBus.h"
#include "tests/support/VanishingXServer.h"
#include "tests/support/WaitUntil.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <optional>
#include <utility>

namespace
{

class Lifetime : public DesktopWithAgent
{
};

TEST_F(Lifetime, EndsWithStatusZeroOnEachSignalThatAsksItTo)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGQUIT}) {
        ASSERT_TRUE(agent->startAndDock());
        ASSERT_EQ(::kill(static_cast<pid_t>(agent->pid()), signal), 0);
        ASSERT_TRUE(waitUntil([&] { return !agent->process().isRunning(); })) << "signal " << signal;
        EXPECT_EQ(agent->process().exitCode(), 0) << "signal " << signal;
    }
}

TEST_F(Lifetime, EndsWithStatusZeroHoweverOftenItIsAskedTo)
{
    ASSERT_TRUE(agent->startAndDock());
    const auto pid = static_cast<pid_t>(agent->pid());
    const bool ended = waitUntil([&] {
        for (int i = 0; i < 100 && agent->process().isRunning(); ++i) {
            ::kill(pid, i % 2 == 0 ? SIGTERM : SIGHUP);
        }
        return !agent->process().isRunning();
    });
    ASSERT_TRUE(ended);
    EXPECT_EQ(agent->process().exitCode(), 0);
}

TEST_F(Lifetime, EndsWithStatusZeroWhileTheMenuIsOpen)
{
    ASSERT_TRUE(agent->startAndDock());
    ASSERT_TRUE(agent->openMenu());
    agent->process().terminate();
    ASSERT_TRUE(waitUntil([&] { return !agent->process().isRunning(); }));
    EXPECT_EQ(agent->process().exitCode(), 0);
}

TEST_F(Lifetime, LeavesTheDisplayToTheAgentThatIsThereAlready)
{
    ASSERT_TRUE(agent->startAndDock());
    Agent second(desktop);
    ASSERT_TRUE(second.start());
    ASSERT_TRUE(waitUntil([&] { return !second.process().isRunning(); }));
    EXPECT_EQ(second.process().exitCode(), 0);
    EXPECT_TRUE(agent->isDocked());
}

TEST_F(Lifetime, LeavesTheDisplayToTheFirstAgentThoughItsLockWasTakenAwayAndGivenBack)
{
    const QByteArray lock = "_KIVMENUA_S0";
    ASSERT_TRUE(agent->startAndDock());
    ASSERT_EQ(desktop.view().selectionOwnerPid(lock), agent->pid());
    HostileClient thief(desktop.server());
    thief.takeSelection(lock);
    EXPECT_NE(desktop.view().selectionOwnerPid(lock), agent->pid());
    thief.giveUpSelection(lock);
    EXPECT_TRUE(waitUntil([&] { return desktop.view().selectionOwnerPid(lock) == agent->pid(); }));
    Agent second(desktop);
    ASSERT_TRUE(second.start());
    ASSERT_TRUE(waitUntil([&] { return !second.process().isRunning(); })) << "there are two copies";
    EXPECT_EQ(second.process().exitCode(), 0);
}

TEST_F(Lifetime, LeavesTheDisplayToTheFirstAgentHoweverWhoTookItsLockLosesIt)
{
    const QByteArray lock = "_KIVMENUA_S0";
    ASSERT_TRUE(agent->startAndDock());
    std::optional<HostileClient> thief(desktop.server());
    const std::pair<const char *, std::function<void()>> losses[] = {
        {"its window is destroyed", [&] { thief->destroyItsWindow(); }}, {"it ends", [&] { thief.reset(); }}};
    for (const auto &[loss, lose] : losses) {
        thief.emplace(desktop.server());
        thief->takeSelection(lock);
        ASSERT_NE(desktop.view().selectionOwnerPid(lock), agent->pid()) << loss;
        lose();
        ASSERT_TRUE(waitUntil([&] { return desktop.view().selectionOwnerPid(lock) == agent->pid(); })) << loss;
        Agent second(desktop);
        ASSERT_TRUE(second.start());
        ASSERT_TRUE(waitUntil([&] { return !second.process().isRunning(); })) << "there are two copies: " << loss;
        EXPECT_EQ(second.process().exitCode(), 0) << loss;
    }
}

TEST_F(Lifetime, TakesTheDisplayOnceTheAgentBeforeItHasCrashed)
{
    ASSERT_TRUE(agent->startAndDock());
    agent->process().kill();
    Agent second(desktop);
    EXPECT_TRUE(second.startAndDock());
}

TEST_F(Lifetime, EndsWithOneLineWithoutADisplay)
{
    agent->environment.remove(QStringLiteral("DISPLAY"));
    ASSERT_TRUE(agent->start());
    ASSERT_TRUE(waitUntil([&] { return !agent->process().isRunning(); }));
    EXPECT_GT(agent->process().exitCode(), 0);
    EXPECT_EQ(agent->standardError().count('\n'), 1) << agent->standardError().constData();
    EXPECT_TRUE(agent->standardError().contains("DISPLAY")) << agent->standardError().constData();
}

TEST_F(Lifetime, LaunchesNoBusWhereThereIsNone)
{
    const QTemporaryDir tools;
    const QString record = tools.filePath(QStringLiteral("launched"));
    QFile launcher(tools.filePath(QStringLiteral("dbus-launch")));
    ASSERT_TRUE(launcher.open(QIODevice::WriteOnly));
    launcher.write("#!/bin/sh\n: > '" + record.toLocal8Bit() + "'\nexit 1\n");
    launcher.close();
    ASSERT_TRUE(launcher.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    const QString path = QStringLiteral("PATH");
    agent->environment.insert(path, tools.path() + QLatin1Char(':') + agent->environment.value(path));
    const QString address = QStringLiteral("DBUS_SESSION_BUS_ADDRESS");
    const QString runtime = agent->environment.value(QStringLiteral("XDG_RUNTIME_DIR"));

    for (const QString &given : {QString(), QStringLiteral("autolaunch:")}) {
        for (const QString &folder : {QString(), runtime}) {
            agent->environment.insert(address, given);
            agent->environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder);
            if (given.isEmpty()) {
                agent->environment.remove(address);
            }
            ASSERT_TRUE(agent->startAndDock());
            agent->process().terminate();
            ASSERT_TRUE(waitUntil([&] { return !agent->process().isRunning(); }));
            EXPECT_EQ(agent->process().exitCode(), 0);
            EXPECT_FALSE(QFile::remove(record)) << qPrintable(given) << ' ' << qPrintable(folder);
        }
    }
}

TEST_F(Lifetime, GoesOnWithoutABusThatNeverAnswersUntilOneDoes)
{
    desktop.bus().stop();
    std::optional<SilentSocket> silent(desktop.bus().address().mid(QStringLiteral("unix:path=").size()));
    ASSERT_TRUE(agent->startAndDock());
    EXPECT_TRUE(agent->openMenu()) << "the loop runs";
    silent.reset();
    ASSERT_TRUE(desktop.bus().start());
    EXPECT_TRUE(waitUntil([&] { return agent->isLinked(); }));
}

TEST_F(Lifetime, GoesOnWithoutABusThatStallsBeforeItsWelcome)
{
    const StallingBus stalling;
    agent->environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QString::fromLocal8Bit(stalling.address()));
    ASSERT_TRUE(agent->startAndDock());
    EXPECT_TRUE(agent->openMenu()) << "the loop runs";
    EXPECT_TRUE(agent->standardError().startsWith("kiv.link: no answer of the session bus at "));
    EXPECT_EQ(agent->standardError().count('\n'), 1) << agent->standardError().constData();
}

TEST_F(Lifetime, StartsNoPortalInASessionWithoutOne)
{
    const FakePortal portal(desktop.bus());
    ASSERT_TRUE(portal.isThere());
    ASSERT_TRUE(agent->startAndDock());
    ASSERT_TRUE(waitUntil([&] { return agent->isLinked(); }));
    EXPECT_TRUE(agent->openMenu());
    EXPECT_FALSE(portal.isAsked()) << "a bus starts it for whoever asks";
}

TEST_F(Lifetime, KeepsAllItsThreadsOnOneHeap)
{
    ASSERT_TRUE(agent->startAndDock());
    ASSERT_TRUE(waitUntil([&] { return agent->isLinked(); }));
    ASSERT_TRUE(agent->openMenu());
    EXPECT_EQ(ProcessMemory::heapsOfThreads(agent->pid()), 0);
}

TEST_F(Lifetime, SaysNothingWhenAHostDrawsTheItem)
{
    desktop.stopPanel();
    ChildProcess watcher;
    watcher.environment = desktop.environment();
    ASSERT_TRUE(watcher.start(QStringLiteral(KIV_NOTIFIER_WATCHER), {}));
    ASSERT_TRUE(agent->start());
    ASSERT_TRUE(waitUntil([&] { return watcher.output().contains("item"); })) << "the host has no item";
    ASSERT_TRUE(waitUntil([&] { return agent->isLinked(); }));
    agent->process().terminate();
    ASSERT_TRUE(waitUntil([&] { return !agent->process().isRunning(); }));
    EXPECT_EQ(agent->standardError(), QByteArray());
}

TEST_F(Lifetime, SaysNothingWhenAllIsWell)
{
    ASSERT_TRUE(agent->startAndDock());
    ASSERT_TRUE(waitUntil([&] { return agent->isLinked(); }));
    agent->process().terminate();
    ASSERT_TRUE(waitUntil([&] { return !agent->process().isRunning(); }));
    EXPECT_EQ(agent->standardError(), QByteArray());
    EXPECT_TRUE(agent->systemLog().isEmpty());
}

/// Ends as it waits for one to start.
TEST(LifetimeWithoutAPanel, EndsWithStatusZeroOnEachSignalThatAsksItTo)
{
    Desktop desktop;
    ASSERT_TRUE(desktop.start());
    for (const int signal : {SIGTERM, SIGHUP}) {
        Agent agent(desktop);
        ASSERT_TRUE(agent.start());
        ASSERT_TRUE(waitUntil([&] { return desktop.view().selectionOwnerPid("_KIVMENUA_S0") == agent.pid(); }));
        ASSERT_EQ(::kill(static_cast<pid_t>(agent.pid()), signal), 0);
        ASSERT_TRUE(waitUntil([&] { return !agent.process().isRunning(); }));
        EXPECT_EQ(agent.process().exitCode(), 0) << "signal " << signal;
    }
}

TEST(LifetimeWithoutAPanel, EndsWithStatusZeroAtTheWordOfTheSessionManager)
{
    Desktop desktop;
    ASSERT_TRUE(desktop.start());
    SessionManager manager;
    Agent agent(desktop);
    manager.addTo(agent.environment);
    ASSERT_TRUE(agent.start());
    ASSERT_TRUE(manager.logOut());
    ASSERT_TRUE(waitUntil([&] { return !agent.process().isRunning(); }));
    EXPECT_EQ(agent.process().exitCode(), 0);
}

TEST(LifetimeWithoutXFixes, EndsWithOneLine)
{
    Desktop desktop;
    ASSERT_TRUE(desktop.start(Desktop::Server::WithoutXFixes));
    Agent agent(desktop);
    ASSERT_TRUE(agent.start());
    ASSERT_TRUE(waitUntil([&] { return !agent.process().isRunning(); }));
    EXPECT_EQ(agent.process().exitCode(), EXIT_FAILURE);
    EXPECT_EQ(agent.standardError().count('\n'), 1) << agent.standardError().constData();
    EXPECT_TRUE(agent.standardError().contains("XFIXES")) << agent.standardError().constData();
}

TEST(LifetimeWithAServerThatVanishes, EndsWithOneLine)
{
    Desktop desktop;
    ASSERT_TRUE(desktop.start());
    const VanishingXServer vanishing;
    Agent agent(desktop);
    agent.environment.insert(QStringLiteral("DISPLAY"), vanishing.display());
    ASSERT_TRUE(agent.start());
    ASSERT_TRUE(waitUntil([&] { return !agent.process().isRunning(); }));
    EXPECT_EQ(agent.process().exitCode(), EXIT_FAILURE);
    EXPECT_EQ(agent.standardError().count('\n'), 1) << agent.standardError().constData();
    EXPECT_TRUE(agent.standardError().contains("does not answer")) << agent.standardError().constData();
}

} // namespace
