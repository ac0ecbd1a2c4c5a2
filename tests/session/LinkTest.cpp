#include "tests/session/support/DesktopWithAgent.h"
#include "tests/session/support/Service.h"
#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>
#include <csignal>

namespace
{

class Link : public DesktopWithAgent
{
protected:
    void SetUp() override
    {
        ASSERT_NO_FATAL_FAILURE(DesktopWithAgent::SetUp());
        service.emplace(desktop);
    }

    /// Chooses "Minimize", which must be allowed, with the pointer.
    void chooseMinimize()
    {
        const std::optional<XWindow> menu = agent->openMenu();
        ASSERT_TRUE(menu);
        const std::optional<XWindow> submenu = agent->openWorkspaceMenu(*menu);
        ASSERT_TRUE(submenu);
        desktop.input().click(submenu->geometry.topLeft() + QPoint(20, 12));
        ASSERT_TRUE(agent->waitUntilClosed());
    }

    [[nodiscard]] bool serviceHears(const QByteArray &line)
    {
        return waitUntil([&] { return service->lines().contains(line); });
    }

    std::optional<Service> service;
};

TEST_F(Link, CarriesAChoiceFromTheMenuToTheService)
{
    ASSERT_TRUE(agent->startAndDock());
    ASSERT_TRUE(service->attach(*agent));
    ASSERT_TRUE(service->allow(*agent, "32793 32796"));

    chooseMinimize();

    EXPECT_TRUE(serviceHears("meoa 32793 Minimize"));
    EXPECT_TRUE(agent->systemLog().isEmpty());
}

TEST_F(Link, AsksBeforeItForwardsADisconnect)
{
    ASSERT_TRUE(agent->startAndDock());
    ASSERT_TRUE(service->attach(*agent));
    ASSERT_TRUE(service->allow(*agent, "32792"));

    ASSERT_TRUE(agent->openMenu());
    for (int downTo = 1; downTo <= 3; ++downTo) {
        desktop.input().key(XK_Down);
    }
    desktop.input().key(XK_Return);
    // The menu goes and the question, a window with a frame, comes.
    ASSERT_TRUE(waitUntil([&] {
        const QList<XWindow> windows = agent->freeWindows();
        return windows.size() == 1 && !windows.first().overrideRedirect &&
               desktop.view().focusOwnerPid() == agent->pid();
    })) << "no question was asked";
    EXPECT_TRUE(service->lines().isEmpty());
    desktop.input().key(XK_Return);
    EXPECT_TRUE(serviceHears("meoa 32792 Disconnect the Session")) << service->process().output().constData();
}

TEST_F(Link, LogsOneErrorForAChoiceAfterTheServiceHasGone)
{
    ASSERT_TRUE(agent->startAndDock());
    ASSERT_TRUE(service->attach(*agent));
    ASSERT_TRUE(service->allow(*agent, "32793"));
    service->process().kill();

    chooseMinimize();

    EXPECT_TRUE(waitUntil([&] { return !agent->systemLog().isEmpty(); }));
    EXPECT_EQ(agent->systemLog(), QByteArrayList{"3 kivmAESendEvent failed, error=-600"});
}

TEST_F(Link, LogsOneErrorForAChoiceWhileThereIsNoBus)
{
    ASSERT_TRUE(agent->startAndDock());
    ASSERT_TRUE(service->attach(*agent));
    ASSERT_TRUE(service->allow(*agent, "32793"));
    // Held, for without a bus it ends, and then it is the process that is missed.
    ASSERT_EQ(::kill(static_cast<pid_t>(service->process().pid()), SIGSTOP), 0);
    desktop.bus().stop();

    chooseMinimize();

    EXPECT_TRUE(waitUntil([&] { return !agent->systemLog().isEmpty(); }));
    EXPECT_EQ(agent->systemLog(), QByteArrayList{"3 kivmAESendEvent failed, error=-609"});
}

TEST_F(Link, EndsTheAgentAtTheServicesWord)
{
    ASSERT_TRUE(agent->startAndDock());
    ASSERT_TRUE(service->attach(*agent));
    service->send("quit");
    ASSERT_TRUE(waitUntil([&] { return !agent->process().isRunning(); }));
    EXPECT_EQ(agent->process().exitCode(), 0);
}

TEST_F(Link, StandsWhenTheBusComesAfterTheAgent)
{
    desktop.bus().stop();
    ASSERT_TRUE(agent->startAndDock());
    EXPECT_FALSE(agent->isLinked());

    ASSERT_TRUE(desktop.bus().start());
    ASSERT_TRUE(service->attach(*agent));
    EXPECT_TRUE(service->allow(*agent, "32793"));
}

TEST_F(Link, HealsWhenTheBusDiesAndReturns)
{
    ASSERT_TRUE(agent->startAndDock());
    ASSERT_TRUE(waitUntil([&] { return agent->isLinked(); }));
    desktop.bus().stop();
    EXPECT_FALSE(agent->isLinked());

    ASSERT_TRUE(desktop.bus().start());
    ASSERT_TRUE(service->attach(*agent));
    ASSERT_TRUE(service->allow(*agent, "32793"));
    chooseMinimize();
    EXPECT_TRUE(serviceHears("meoa 32793 Minimize"));
}

TEST_F(Link, KeepsTwoDesktopsOnOneBusApart)
{
    Desktop other;
    ASSERT_TRUE(other.start());
    ASSERT_TRUE(other.startWindowManager());
    ASSERT_TRUE(other.startPanel());
    Agent otherAgent(other);
    Service otherService(other);
    const QString key = QStringLiteral("DBUS_SESSION_BUS_ADDRESS");
    otherAgent.environment.insert(key, desktop.bus().address());
    otherService.environment.insert(key, desktop.bus().address());
    ASSERT_TRUE(agent->startAndDock());
    ASSERT_TRUE(otherAgent.startAndDock());
    ASSERT_TRUE(service->attach(*agent));
    ASSERT_TRUE(otherService.attach(otherAgent));
    const QImage otherOff = otherAgent.itemPicture();

    ASSERT_TRUE(service->allow(*agent, "32793"));
    EXPECT_EQ(otherAgent.itemPicture(), otherOff) << "one service switched the other's agent";
    ASSERT_TRUE(otherService.allow(otherAgent, "32796"));
    chooseMinimize();

    EXPECT_TRUE(serviceHears("meoa 32793 Minimize"));
    EXPECT_TRUE(otherService.lines().isEmpty());
    EXPECT_TRUE(otherAgent.isDocked());
}

} // namespace
