#include "tests/session/support/AgentClock.h"
#include "tests/session/support/DesktopWithAgent.h"
#include "tests/session/support/HostileClient.h"
#include "tests/session/support/Service.h"
#include "tests/support/WaitUntil.h"

#include <QSet>

#include <gtest/gtest.h>

#include <X11/keysym.h>

namespace
{

using namespace std::chrono_literals;

/// What the item shows, whatever the panel has painted around it: the picture of an active service is blue, the other
/// grey.
enum class Shown { Nothing, Grey, Blue };

Shown shownIn(const QImage &picture)
{
    auto shown = Shown::Nothing;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor colour = picture.pixelColor(x, y);
            constexpr int minDifference = 100;
            if (colour.blue() - colour.red() > minDifference) {
                return Shown::Blue;
            }
            if (colour.lightness() - picture.pixelColor(0, 0).lightness() > minDifference) {
                shown = Shown::Grey;
            }
        }
    }
    return shown;
}

class DockingByTheClock : public DesktopWithAgent
{
};

class Docking : public DesktopWithAgent
{
protected:
    void SetUp() override
    {
        ASSERT_NO_FATAL_FAILURE(DesktopWithAgent::SetUp());
        ASSERT_TRUE(agent->startAndDock());
    }
};

TEST_F(Docking, PutsOneItemIntoThePanelAndNothingElseOnTheScreen)
{
    const QList<XWindow> windows = desktop.view().windowsOf(agent->pid());
    ASSERT_EQ(windows.size(), 1);
    EXPECT_TRUE(desktop.panelGeometry().contains(windows.first().geometry));
    EXPECT_NE(desktop.view().focusOwnerPid(), agent->pid());
}

TEST_F(Docking, ComesBackWhenThePanelIsKilledAndStartedAgain)
{
    for (int round = 0; round < 3; ++round) {
        desktop.stopPanel();
        EXPECT_TRUE(waitUntil([&] { return !agent->dockedItem(); }));
        ASSERT_TRUE(desktop.startPanel());
        ASSERT_TRUE(waitUntil([&] { return agent->isDocked(); })) << "round " << round;
    }
    EXPECT_TRUE(agent->freeWindows().isEmpty());
    EXPECT_TRUE(agent->openMenu());
}

TEST_F(Docking, StandsAloneWhileThePanelIsGone)
{
    desktop.stopPanel();
    ASSERT_TRUE(waitUntil([&] { return agent->freeWindows().size() == 1; }));
    EXPECT_TRUE(waitUntil([&] { return agent->freeWindows().value(0).geometry == QRect(1098, 0, 22, 22); }))
        << "the window manager has the panel's room back";

    desktop.input().click(agent->freeWindows().first().geometry.center());
    EXPECT_TRUE(waitUntil([&] { return agent->freeWindows().size() == 2; })) << "no menu opened";
}

TEST_F(Docking, StandsAloneForAPanelThatTakesNothingIn)
{
    HostileClient panel(desktop.server());
    desktop.stopPanel();
    panel.takeSelection("_NET_SYSTEM_TRAY_S0");
    ASSERT_TRUE(waitUntil([&] { return agent->freeWindows().size() == 1; }, 20s)) << "there is no item";
    desktop.input().click(agent->freeWindows().first().geometry.center());
    ASSERT_TRUE(waitUntil([&] {
        const QList<XWindow> windows = agent->freeWindows();
        return windows.size() == 2 && agent->isDrawn(windows.last()); // Only then the keyboard is its own.
    })) << "no menu opened";
    desktop.input().key(XK_Escape);
    ASSERT_TRUE(waitUntil([&] { return agent->freeWindows().size() == 1; }));

    panel.giveUpSelection("_NET_SYSTEM_TRAY_S0");
    ASSERT_TRUE(desktop.startPanel());
    ASSERT_TRUE(waitUntil([&] { return agent->isDocked(); }));
    EXPECT_TRUE(waitUntil([&] { return agent->freeWindows().isEmpty(); })) << "the item shows twice";
}

TEST_F(DockingByTheClock, StandsAloneFromTheFifthSecondOnForAPanelThatTakesNothingIn)
{
    AgentClock clock;
    clock.addTo(agent->environment);
    ASSERT_TRUE(agent->startAndDock());
    desktop.stopPanel();
    ASSERT_TRUE(waitUntil([&] { return agent->freeWindows().size() == 1; })) << "it does not even stand alone";
    HostileClient panel(desktop.server());
    clock.stop();
    panel.takeSelection("_NET_SYSTEM_TRAY_S0");
    ASSERT_TRUE(waitUntil([&] { return agent->freeWindows().isEmpty(); })) << "it does not ask the panel";
    clock.advance(4s);
    EXPECT_FALSE(waitUntil([&] { return !agent->freeWindows().isEmpty(); }, 500ms)) << "it does not wait";
    clock.advance(2s);
    EXPECT_TRUE(waitUntil([&] { return agent->freeWindows().size() == 1; })) << "there is no item";
}

TEST_F(Docking, IsNotHurtByTheLossOfWindowsThatNobodySees)
{
    HostileClient destroyer(desktop.server());
    const QList<xcb_window_t> windows = destroyer.hiddenWindowsOf(agent->pid());
    EXPECT_GE(windows.size(), 3);
    for (const xcb_window_t window : windows) {
        destroyer.destroy(window);
        ASSERT_TRUE(agent->openMenu()) << windows.indexOf(window);
        desktop.input().key(XK_Escape);
        ASSERT_TRUE(agent->waitUntilClosed()) << windows.indexOf(window);
    }
    Agent second(desktop);
    ASSERT_TRUE(second.start());
    ASSERT_TRUE(waitUntil([&] { return !second.process().isRunning(); })) << "there are two copies";
    desktop.stopPanel();
    ASSERT_TRUE(desktop.startPanel());
    EXPECT_TRUE(waitUntil([&] { return agent->isDocked(); }));
    EXPECT_TRUE(agent->openMenu());
}

TEST_F(Docking, IsNotHurtByTheLossOfTheWindowThatAnOpenMenuHangsOn)
{
    // What stays when it has closed is there from now on.
    ASSERT_TRUE(agent->openMenu());
    desktop.input().key(XK_Escape);
    ASSERT_TRUE(agent->waitUntilClosed());
    HostileClient destroyer(desktop.server());
    const QList<xcb_window_t> before = destroyer.hiddenWindowsOf(agent->pid());
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(agent->openMenu());
        QList<xcb_window_t> anchors = destroyer.hiddenWindowsOf(agent->pid());
        anchors.removeIf([&](xcb_window_t window) { return before.contains(window); });
        ASSERT_EQ(anchors.size(), 1) << "round " << round;
        destroyer.destroy(anchors.first());
        desktop.input().key(XK_Escape);
        ASSERT_TRUE(agent->waitUntilClosed()) << "round " << round;
        EXPECT_EQ(destroyer.hiddenWindowsOf(agent->pid()), before) << "round " << round;
    }
    EXPECT_TRUE(agent->openMenu());
    EXPECT_TRUE(agent->process().isRunning());
}

TEST_F(Docking, ComesBackAfterAnotherProgramHasDestroyedItsWindow)
{
    HostileClient destroyer(desktop.server());
    const xcb_window_t docked = agent->dockedItem()->id;
    destroyer.destroy(docked);
    ASSERT_TRUE(waitUntil([&] { return agent->isDocked() && agent->dockedItem()->id != docked; }));
    EXPECT_TRUE(agent->openMenu());
}

TEST_F(Docking, SurvivesTwentyRoundsOfBeingRemovedAndShownAgain)
{
    Service service(desktop);
    ASSERT_TRUE(service.attach(*agent));
    for (int round = 0; round < 20; ++round) {
        service.send("flags 0");
        ASSERT_TRUE(waitUntil([&] { return desktop.view().windowsOf(agent->pid()).isEmpty(); })) << "round " << round;
        service.send("flags 2");
        ASSERT_TRUE(waitUntil([&] { return agent->isDocked(); })) << "round " << round;
    }
    EXPECT_EQ(desktop.view().windowsOf(agent->pid()).size(), 1);
    EXPECT_TRUE(agent->openMenu());
}

TEST_F(Docking, ChangesItsPictureWithTheServicesFlags)
{
    EXPECT_TRUE(waitUntil([&] { return shownIn(agent->itemPicture()) == Shown::Grey; }));
    Service service(desktop);
    ASSERT_TRUE(service.attach(*agent));

    service.send("flags 6");
    EXPECT_TRUE(waitUntil([&] { return shownIn(agent->itemPicture()) == Shown::Blue; }));
    service.send("flags 2");
    EXPECT_TRUE(waitUntil([&] { return shownIn(agent->itemPicture()) == Shown::Grey; }));
}

/// The item that stands alone where a panel takes nothing in.
QImage itemAlone(Desktop::Server server)
{
    Desktop desktop;
    EXPECT_TRUE(desktop.start(server));
    HostileClient panel(desktop.server());
    panel.takeSelection("_NET_SYSTEM_TRAY_S0");
    Agent agent(desktop);
    EXPECT_TRUE(agent.start());
    EXPECT_TRUE(waitUntil([&] { return agent.freeWindows().size() == 1; }, 60s)) << agent.standardError().constData();
    const QRect place = agent.freeWindows().isEmpty() ? QRect() : agent.freeWindows().first().geometry;
    QImage picture;
    const auto isDrawn = [&] {
        picture = desktop.view().grab(place);
        return picture != desktop.view().grab(place.translated(-place.width(), 0));
    };
    EXPECT_TRUE(waitUntil(isDrawn)) << "there is no item";
    return picture;
}

TEST(DockingOnAScreenOf256Colours, ShowsAnItemThatCanBeRecognised)
{
    const QImage usual = itemAlone(Desktop::Server::RemoteDesktop);
    const QImage rough = itemAlone(Desktop::Server::EightBits);
    ASSERT_EQ(rough.size(), usual.size());
    constexpr int halfAStep = 43; // From one of four levels to the next.
    QSet<QRgb> colours;
    for (int y = 0; y < usual.height(); ++y) {
        for (int x = 0; x < usual.width(); ++x) {
            const QColor expected = usual.pixelColor(x, y);
            const QColor seen = rough.pixelColor(x, y);
            colours.insert(seen.rgb());
            EXPECT_NEAR(seen.red(), expected.red(), halfAStep) << x << ' ' << y;
            EXPECT_NEAR(seen.green(), expected.green(), halfAStep) << x << ' ' << y;
            EXPECT_NEAR(seen.blue(), expected.blue(), halfAStep) << x << ' ' << y;
        }
    }
    EXPECT_GE(colours.size(), 3);
}

} // namespace
