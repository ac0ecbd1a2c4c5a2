#include "tests/session/support/Agent.h"
#include "tests/session/support/Desktop.h"
#include "tests/session/support/OtherWindow.h"
#include "tests/support/WaitUntil.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <X11/keysym.h>

namespace
{

constexpr QRect usualPlace(1280 - 160 - 22, 0, 22, 22);

/// Without window manager and panel.
class BareDesktop : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(desktop.start());
        agent.emplace(desktop);
        sinceTheStart.start();
        ASSERT_TRUE(agent->start());
        ASSERT_TRUE(standsAlone());
    }

    [[nodiscard]] bool standsAlone() const
    {
        return waitUntil([&] { return agent->freeWindows().size() == 1; }, std::chrono::seconds(60));
    }
    /// It takes keys only some time after it has come up.
    [[nodiscard]] bool closesTheMenu()
    {
        return waitUntil([&] {
            desktop.input().key(XK_Escape);
            return agent->freeWindows().size() == 1;
        });
    }
    [[nodiscard]] QRect item() const
    {
        const QList<XWindow> windows = agent->freeWindows();
        return windows.isEmpty() ? QRect() : windows.first().geometry;
    }
    void drag(QPoint from, QPoint to)
    {
        desktop.input().move(from);
        desktop.input().press();
        desktop.input().move(to);
        desktop.input().release();
    }

    Desktop desktop;
    std::optional<Agent> agent;
    QElapsedTimer sinceTheStart;
};

TEST_F(BareDesktop, HasItemAndLinkAfterThreeSecondsAndTheItemInAPanelThatComesLater)
{
    EXPECT_GE(sinceTheStart.elapsed(), 3'000) << "it has not waited for a panel";
    EXPECT_LT(sinceTheStart.elapsed(), 30'000) << "it has waited as long as for one that is on its way";
    EXPECT_TRUE(waitUntil([&] { return agent->isLinked(); }));
    EXPECT_EQ(item(), usualPlace);

    desktop.input().click(item().center());
    ASSERT_TRUE(waitUntil([&] { return agent->freeWindows().size() == 2; })) << "no menu opened";
    const QRect menu = agent->freeWindows().last().geometry;
    EXPECT_EQ(menu.top(), 22 + 5) << "the bar counts as 22 points high where there is none";
    ASSERT_TRUE(closesTheMenu());

    ASSERT_TRUE(desktop.startPanel());
    EXPECT_TRUE(waitUntil([&] { return agent->isDocked(); }));
    EXPECT_TRUE(waitUntil([&] { return agent->freeWindows().isEmpty(); })) << "the item shows twice";
    EXPECT_TRUE(agent->openMenu());
}

TEST_F(BareDesktop, LeavesTheItemWhereTheUserHasDraggedItAndOpensTheMenuThere)
{
    drag(item().topLeft() + QPoint(11, 11), {411, 300});
    EXPECT_TRUE(waitUntil([&] { return item() == QRect(400, 0, 22, 22); }));
    desktop.input().click(item().center());
    ASSERT_TRUE(waitUntil([&] { return agent->freeWindows().size() == 2; })) << "no menu opened";
    EXPECT_EQ(agent->freeWindows().last().geometry.topLeft(), QPoint(400, 27));
    ASSERT_TRUE(closesTheMenu());

    agent->process().terminate();
    ASSERT_TRUE(waitUntil([&] { return !agent->process().isRunning(); }));
    ASSERT_TRUE(agent->start());
    ASSERT_TRUE(standsAlone());
    EXPECT_EQ(item(), QRect(400, 0, 22, 22)) << "after a restart";

    ASSERT_TRUE(desktop.startPanel());
    ASSERT_TRUE(waitUntil([&] { return agent->isDocked(); }));
    desktop.stopPanel();
    ASSERT_TRUE(standsAlone());
    EXPECT_EQ(item(), QRect(400, 0, 22, 22)) << "after a panel has come and gone";
}

TEST_F(BareDesktop, HasTheItemWhereTheWindowManagerLetsWindowsBe)
{
    ASSERT_TRUE(desktop.startWindowManager());
    OtherWindow shell(desktop.server(), {0, 0, 1280, 48});
    shell.keepOthersBelow(48);
    EXPECT_TRUE(waitUntil([&] { return item() == usualPlace.translated(0, 48); }));
    shell.keepOthersBelow(0);
    EXPECT_TRUE(waitUntil([&] { return item() == usualPlace; }));
}

} // namespace
