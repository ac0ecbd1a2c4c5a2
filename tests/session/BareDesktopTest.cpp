#include "tests/session/support/Agent.h"
#include "tests/session/support/Desktop.h"
#include "tests/support/WaitUntil.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <X11/keysym.h>

namespace
{

// The agent waits 30 seconds for a panel before it goes on without, so there is one test for all that follows.
TEST(BareDesktop, ShowsTheItemInTheCornerUntilAPanelComes)
{
    Desktop desktop;
    ASSERT_TRUE(desktop.start());
    Agent agent(desktop);
    QElapsedTimer sinceTheStart;
    sinceTheStart.start();
    ASSERT_TRUE(agent.start());
    ASSERT_TRUE(waitUntil([&] { return agent.freeWindows().size() == 1; }, std::chrono::seconds(60)));
    EXPECT_GE(sinceTheStart.elapsed(), 30'000) << "it has not waited for a panel";

    const QRect item = agent.freeWindows().first().geometry;
    EXPECT_GE(item.right(), desktop.view().screenSize().width() - 1 - item.width());
    EXPECT_LE(item.top(), item.height());

    desktop.input().click(item.center());
    ASSERT_TRUE(waitUntil([&] { return agent.freeWindows().size() == 2; })) << "no menu opened";
    const QRect menu = agent.freeWindows().last().geometry;
    EXPECT_EQ(menu.top(), 22 + 5) << "the bar counts as 22 points high where there is none";
    desktop.input().key(XK_Escape);
    ASSERT_TRUE(waitUntil([&] { return agent.freeWindows().size() == 1; }));

    ASSERT_TRUE(desktop.startPanel());
    EXPECT_TRUE(waitUntil([&] { return agent.isDocked(); }));
    EXPECT_TRUE(waitUntil([&] { return agent.freeWindows().isEmpty(); })) << "the item shows twice";
    EXPECT_TRUE(agent.openMenu());
}

} // namespace
