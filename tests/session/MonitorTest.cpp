#include "tests/session/support/Agent.h"
#include "tests/session/support/Desktop.h"
#include "tests/session/support/MenuOffPanel.h"
#include "tests/session/support/XResourceFile.h"
#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>
#include <optional>

namespace
{

struct Layout {
    const char *name;
    QList<QRect> monitors;
    int main;
    int ofPanel; ///< The index of the one that has the panel.
    double scale = 1;
};

class MenuOnMonitors : public testing::TestWithParam<Layout>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(desktop.start());
        ASSERT_TRUE(desktop.showOn(GetParam().monitors, GetParam().main));
        ASSERT_TRUE(desktop.startWindowManager());
        if (GetParam().scale != 1) {
            XResourceFile(desktop.server()).write("Xft.dpi:\t" + QByteArray::number(96 * GetParam().scale) + '\n');
        }
        agent.emplace(desktop);
    }

    /// The panel's own number of the monitor: it counts them from left to right, and from the top down.
    [[nodiscard]] static QString monitorOfPanel() { return QString::number(GetParam().ofPanel + 1); }

    Desktop desktop;
    std::optional<Agent> agent;
};

TEST_P(MenuOnMonitors, OpensAtTheItemFivePointsOffThePanelAtEachEdge)
{
    const QRect monitor = GetParam().monitors.at(GetParam().ofPanel);
    using Edge = Desktop::PanelEdge;
    for (const Edge edge : {Edge::Top, Edge::Bottom, Edge::Left, Edge::Right}) {
        SCOPED_TRACE(static_cast<int>(edge));
        ASSERT_TRUE(desktop.startPanel(Desktop::TraySide::Left, edge, 0, 40, monitorOfPanel()));
        if (!agent->process().isRunning()) {
            ASSERT_TRUE(agent->start());
        }
        ASSERT_TRUE(waitUntil([&] { return agent->isDocked(); }));
        ASSERT_TRUE(monitor.contains(desktop.panelGeometry())) << "the panel is on the other monitor";
        const QRect item = agent->dockedItem()->geometry;
        const std::optional<XWindow> menu = agent->openMenu();
        ASSERT_TRUE(menu);
        EXPECT_TRUE(monitor.contains(menu->geometry)) << "it reaches into the other monitor";
        expectMenuOffPanel(menu->geometry, item, desktop.panelGeometry(), edge, GetParam().scale);
        desktop.input().key(XK_Escape);
        ASSERT_TRUE(agent->waitUntilClosed());
        desktop.stopPanel();
        ASSERT_TRUE(waitUntil([&] { return !agent->dockedItem(); }));
    }
}

const QRect large(0, 0, 1280, 800);
const QList<QRect> sideBySide{large, {1280, 100, 1024, 600}};
const QList<QRect> sideBySideLower{{0, 150, 1024, 600}, {1024, 0, 1280, 800}};
const QList<QRect> sideBySideAlike{large, {1280, 0, 1280, 800}};
const QList<QRect> oneAboveTheOther{large, {100, 800, 1024, 600}};

INSTANTIATE_TEST_SUITE_P(Layouts, MenuOnMonitors,
                         testing::Values(Layout{"SideBySideMainLeftPanelOnIt", sideBySide, 0, 0},
                                         Layout{"SideBySideMainLeftPanelOnTheOther", sideBySide, 0, 1},
                                         Layout{"SideBySideMainRightPanelOnIt", sideBySideLower, 1, 1},
                                         Layout{"SideBySideMainRightPanelOnTheOther", sideBySideLower, 1, 0},
                                         Layout{"OneAboveTheOtherMainAbovePanelOnIt", oneAboveTheOther, 0, 0},
                                         Layout{"OneAboveTheOtherMainAbovePanelOnTheOther", oneAboveTheOther, 0, 1},
                                         Layout{"OneAboveTheOtherMainBelowPanelOnIt", oneAboveTheOther, 1, 1},
                                         Layout{"OneAboveTheOtherMainBelowPanelOnTheOther", oneAboveTheOther, 1, 0},
                                         Layout{"MainLeftPanelOnTheOtherTwiceAsFine", sideBySideAlike, 0, 1, 2},
                                         Layout{"MainRightPanelOnTheOtherAQuarterFiner", sideBySideAlike, 1, 0, 1.25},
                                         Layout{"MainLeftPanelOnItHalfAsFineAgain", sideBySideAlike, 0, 0, 1.5}),
                         [](const auto &layout) { return layout.param.name; });

} // namespace
