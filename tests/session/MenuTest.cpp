#include "tests/session/support/Agent.h"
#include "tests/session/support/Desktop.h"
#include "tests/session/support/HostileClient.h"
#include "tests/session/support/MenuOffPanel.h"
#include "tests/session/support/Service.h"
#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>

namespace
{

class Menu : public testing::Test
{
protected:
    void startDesktop(Desktop::TraySide side)
    {
        ASSERT_TRUE(desktop.startPanel(side));
        agent.emplace(desktop);
        ASSERT_TRUE(agent->startAndDock());
    }

    /// Opens the menu and expects it in its place below the item.
    void expectMenuBelowItem()
    {
        const QRect item = agent->dockedItem()->geometry;
        const std::optional<XWindow> menu = agent->openMenu();
        ASSERT_TRUE(menu);
        EXPECT_EQ(menu->geometry.left(), item.left());
        EXPECT_EQ(menu->geometry.top(), desktop.panelGeometry().bottom() + 1 + gapBelowThePanel);
        EXPECT_EQ(agent->freeWindows().size(), 1) << "there is a window beside the menu";
    }

    Desktop desktop;
    std::optional<Agent> agent;
};

class ManagedMenu : public Menu
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(desktop.start());
        ASSERT_TRUE(desktop.startWindowManager());
        startDesktop(Desktop::TraySide::Left);
    }
};

class UnmanagedMenu : public Menu
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(desktop.start());
        startDesktop(Desktop::TraySide::Left);
    }
};

class MenuAtTheScreensEdge : public Menu
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(desktop.start());
        ASSERT_TRUE(desktop.startWindowManager());
        startDesktop(Desktop::TraySide::Right);
    }
};

TEST_F(ManagedMenu, OpensAtTheItemsLeftEdgeFivePointsBelowThePanel)
{
    expectMenuBelowItem();
}

TEST_F(UnmanagedMenu, OpensAtTheItemsLeftEdgeFivePointsBelowThePanel)
{
    expectMenuBelowItem();
}

struct PanelPlace {
    const char *name;
    Desktop::PanelEdge edge;
    int gap;
};

class MenuOfAnyPanel : public Menu, public testing::WithParamInterface<PanelPlace>
{
};

TEST_P(MenuOfAnyPanel, OpensAtTheItemFivePointsOffThePanel)
{
    ASSERT_TRUE(desktop.start());
    ASSERT_TRUE(desktop.startWindowManager());
    ASSERT_TRUE(desktop.startPanel(Desktop::TraySide::Left, GetParam().edge, GetParam().gap));
    agent.emplace(desktop);
    ASSERT_TRUE(agent->startAndDock());
    const QRect panel = desktop.panelGeometry();
    const QRect item = agent->dockedItem()->geometry;
    const std::optional<XWindow> opened = agent->openMenu();
    ASSERT_TRUE(opened);
    expectMenuOffPanel(opened->geometry, item, panel, GetParam().edge);
}

INSTANTIATE_TEST_SUITE_P(Panels, MenuOfAnyPanel,
                         testing::Values(PanelPlace{"Top", Desktop::PanelEdge::Top, 0},
                                         PanelPlace{"Bottom", Desktop::PanelEdge::Bottom, 0},
                                         PanelPlace{"Left", Desktop::PanelEdge::Left, 0},
                                         PanelPlace{"Right", Desktop::PanelEdge::Right, 0},
                                         PanelPlace{"OffTheTop", Desktop::PanelEdge::Top, 8},
                                         PanelPlace{"OffTheBottom", Desktop::PanelEdge::Bottom, 8}),
                         [](const auto &place) { return place.param.name; });

TEST_F(MenuAtTheScreensEdge, MovesLeftJustEnoughToStayOnTheScreen)
{
    const QRect item = agent->dockedItem()->geometry;
    const std::optional<XWindow> menu = agent->openMenu();
    ASSERT_TRUE(menu);
    const int screenWidth = desktop.view().screenSize().width();
    ASSERT_GT(item.left() + menu->geometry.width(), screenWidth) << "the item is too far left for this test";
    EXPECT_EQ(menu->geometry.left() + menu->geometry.width(), screenWidth);
    EXPECT_EQ(menu->geometry.top(), desktop.panelGeometry().bottom() + 1 + gapBelowThePanel);
}

TEST_F(ManagedMenu, ClosesOnEscape)
{
    ASSERT_TRUE(agent->openMenu());
    desktop.input().key(XK_Escape);
    EXPECT_TRUE(agent->waitUntilClosed());
    EXPECT_TRUE(agent->openMenu()) << "it does not open a second time";
}

TEST_F(ManagedMenu, ClosesOnAClickOutside)
{
    const std::optional<XWindow> menu = agent->openMenu();
    ASSERT_TRUE(menu);
    desktop.input().click(menu->geometry.bottomRight() + QPoint(200, 200));
    EXPECT_TRUE(agent->waitUntilClosed());
    EXPECT_TRUE(agent->openMenu()) << "it does not open a second time";
}

TEST_F(ManagedMenu, ClosesOnASecondClickOnTheItemAndOpensOnTheThird)
{
    ASSERT_TRUE(agent->openMenu());
    // A click that comes as fast as the second of two does not count.
    constexpr std::chrono::milliseconds doubleClick(400);
    EXPECT_FALSE(waitUntil([&] { return !agent->hasMenu(); }, doubleClick));
    desktop.input().click(agent->dockedItem()->geometry.center());
    ASSERT_TRUE(agent->waitUntilClosed());
    // It must not come straight back either.
    EXPECT_FALSE(waitUntil([&] { return agent->hasMenu(); }, std::chrono::milliseconds(500)));
    EXPECT_TRUE(agent->openMenu());
}

TEST_F(ManagedMenu, StaysOpenWhenTheItemIsDoubleClicked)
{
    const QPoint item = agent->dockedItem()->geometry.center();
    desktop.input().click(item);
    desktop.input().click(item);
    EXPECT_TRUE(waitUntil([&] { return agent->hasMenu(); }));
    EXPECT_FALSE(waitUntil([&] { return !agent->hasMenu(); }, std::chrono::milliseconds(500)));
    desktop.input().key(XK_Escape);
    EXPECT_TRUE(agent->waitUntilClosed());
}

TEST_F(ManagedMenu, ClosesOnAChoice)
{
    Service service(desktop);
    ASSERT_TRUE(service.attach(*agent));
    ASSERT_TRUE(service.allow(*agent, "32793"));
    const std::optional<XWindow> menu = agent->openMenu();
    ASSERT_TRUE(menu);
    const std::optional<XWindow> submenu = agent->openWorkspaceMenu(*menu);
    ASSERT_TRUE(submenu);
    desktop.input().click(submenu->geometry.topLeft() + QPoint(20, 12));
    ASSERT_TRUE(waitUntil([&] { return service.lines().contains("meoa 32793 Minimize"); }));
    EXPECT_TRUE(agent->waitUntilClosed());
}

TEST_F(ManagedMenu, StaysOpenOnAClickOnADisabledEntry)
{
    const std::optional<XWindow> menu = agent->openMenu();
    ASSERT_TRUE(menu);
    // "Switch Resolution" is the first entry, and off until the service says otherwise.
    desktop.input().click(menu->geometry.topLeft() + QPoint(20, 12));
    EXPECT_FALSE(waitUntil([&] { return !agent->hasMenu(); }, std::chrono::milliseconds(500)));
    EXPECT_EQ(agent->freeWindows().size(), 1);
}

TEST_F(ManagedMenu, OpensASubmenuUnderTheMouseTheFirstTime)
{
    Service service(desktop);
    ASSERT_TRUE(service.attach(*agent));
    ASSERT_TRUE(service.allow(*agent, "32792 32793"));
    const std::optional<XWindow> menu = agent->openMenu();
    ASSERT_TRUE(menu);
    // One move, as a viewer on a slow line makes it.
    desktop.input().move(menu->geometry.topLeft() + QPoint(20, 12));
    EXPECT_TRUE(waitUntil([&] { return agent->freeWindows().size() == 2; })) << "the submenu did not open";
    desktop.input().key(XK_Escape, 2);
    EXPECT_TRUE(waitUntil([&] { return !agent->hasMenu(); }));
}

TEST_F(ManagedMenu, StaysOpenOnAClickOnAnEntryWithASubmenu)
{
    Service service(desktop);
    ASSERT_TRUE(service.attach(*agent));
    ASSERT_TRUE(service.allow(*agent, "32792 32793"));
    const std::optional<XWindow> menu = agent->openMenu();
    ASSERT_TRUE(menu);
    desktop.input().click(menu->geometry.topLeft() + QPoint(20, 12));
    EXPECT_TRUE(waitUntil([&] { return agent->freeWindows().size() == 2; })) << "the submenu did not open";
    EXPECT_FALSE(waitUntil([&] { return !agent->hasMenu(); }, std::chrono::milliseconds(500)));
    desktop.input().key(XK_Escape, 2);
    EXPECT_TRUE(waitUntil([&] { return !agent->hasMenu(); }));
}

TEST_F(ManagedMenu, TakesAChoiceByKeysAlone)
{
    Service service(desktop);
    ASSERT_TRUE(service.attach(*agent));
    ASSERT_TRUE(service.allow(*agent, "32795"));
    ASSERT_TRUE(agent->openMenu());
    // Down to "Manage Workspace", right into it: "Maximize" is its first entry that is enabled.
    desktop.input().key(XK_Down);
    desktop.input().key(XK_Down);
    desktop.input().key(XK_Right);
    ASSERT_TRUE(waitUntil([&] { return agent->freeWindows().size() == 2; })) << "the submenu did not open";
    desktop.input().key(XK_Return);
    EXPECT_TRUE(waitUntil([&] { return service.lines().contains("meoa 32795 Maximize"); }))
        << service.process().output().constData();
    EXPECT_TRUE(agent->waitUntilClosed());
}

TEST_F(ManagedMenu, LeavesOneSubmenuLevelAtATimeOnEscape)
{
    Service service(desktop);
    ASSERT_TRUE(service.attach(*agent));
    ASSERT_TRUE(service.allow(*agent, "32793"));
    const std::optional<XWindow> menu = agent->openMenu();
    ASSERT_TRUE(menu);
    ASSERT_TRUE(agent->openWorkspaceMenu(*menu));
    desktop.input().key(XK_Escape);
    EXPECT_TRUE(waitUntil([&] { return agent->freeWindows().size() == 1; }));
    desktop.input().key(XK_Escape);
    EXPECT_TRUE(agent->waitUntilClosed());
}

TEST_F(ManagedMenu, OpensAgainAfterAnotherProgramHasDestroyedIt)
{
    const std::optional<XWindow> menu = agent->openMenu();
    ASSERT_TRUE(menu);
    HostileClient destroyer(desktop.server());
    destroyer.destroy(menu->id);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_TRUE(agent->openMenu());
}

TEST_F(ManagedMenu, OutlivesThePanel)
{
    const std::optional<XWindow> menu = agent->openMenu();
    ASSERT_TRUE(menu);
    desktop.stopPanel();
    EXPECT_FALSE(waitUntil([&] { return !agent->freeWindows().contains(*menu); }, std::chrono::milliseconds(500)));
    desktop.input().key(XK_Escape);
    ASSERT_TRUE(desktop.startPanel(Desktop::TraySide::Left));
    ASSERT_TRUE(waitUntil([&] { return agent->isDocked() && !agent->hasMenu(); }));
    EXPECT_TRUE(agent->openMenu());
}

} // namespace
