#include "tests/session/support/OtherWindow.h"
#include "tests/session/support/SessionWithMessages.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using namespace std::chrono_literals;

struct Surroundings {
    const char *name;
    bool hasWindowManager;
    int panelThickness;
    int top; ///< Of the pop-up.
};

class PopUpUnderAPanel : public SessionWithMessages, public testing::WithParamInterface<Surroundings>
{
protected:
    PopUpUnderAPanel()
    {
        hasWindowManager = GetParam().hasWindowManager;
        panelThickness = GetParam().panelThickness;
    }
};

TEST_P(PopUpUnderAPanel, KeepsClearOfItAndOfTheTop)
{
    ASSERT_TRUE(start({{{.id = "1"}}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    EXPECT_EQ(desktop.panelGeometry(), QRect(0, 0, 1280, panelThickness));
    EXPECT_EQ(window->geometry.top(), GetParam().top);
    EXPECT_EQ(window->geometry.right(), 1279 - 10);
}

INSTANTIATE_TEST_SUITE_P(Panels, PopUpUnderAPanel,
                         testing::Values(Surroundings{"OfTwentyFour", true, 24, 30}, //
                                         Surroundings{"OfThirty", true, 30, 30},     //
                                         Surroundings{"OfFortyEight", true, 48, 48},
                                         Surroundings{"OfFortyEightWithoutAWindowManager", false, 48, 48}),
                         [](const auto &surroundings) { return surroundings.param.name; });

class PopUpWithoutAPanel : public SessionWithMessages
{
protected:
    PopUpWithoutAPanel() { panelThickness = 0; }

    /// The item and the pop-up, once both are there.
    [[nodiscard]] bool areThere() const
    {
        return waitUntil([&] { return agent->freeWindows().size() == 2; }, std::chrono::seconds(30));
    }
    [[nodiscard]] XWindow item() const
    {
        return one([](const XWindow &window) { return window.geometry.width() == 22; });
    }
    [[nodiscard]] XWindow shownPopUp() const
    {
        return one([](const XWindow &window) { return window.geometry.width() > 22; });
    }

private:
    template <typename Condition>
    [[nodiscard]] XWindow one(Condition condition) const
    {
        const QList<XWindow> windows = agent->freeWindows();
        const auto found = std::find_if(windows.cbegin(), windows.cend(), condition);
        return found == windows.cend() ? XWindow() : *found;
    }
};

TEST_F(PopUpWithoutAPanel, DoesNotCoverTheItem)
{
    OtherWindow shell(desktop.server(), {0, 0, 1280, 24});
    shell.keepOthersBelow(24);
    ASSERT_TRUE(start({{{.id = "1"}}}));
    ASSERT_TRUE(areThere());
    EXPECT_EQ(item().geometry.top(), 24);
    EXPECT_EQ(shownPopUp().geometry.top(), item().geometry.bottom() + 1);
}

class PopUpInABareDesktop : public PopUpWithoutAPanel
{
protected:
    PopUpInABareDesktop() { hasWindowManager = false; }
};

TEST_F(PopUpInABareDesktop, StaysAboveWindowsThatComeLater)
{
    ASSERT_TRUE(start({{{.id = "1"}}}));
    ASSERT_TRUE(areThere());
    const XWindow window = shownPopUp();
    EXPECT_EQ(window.geometry.top(), 30);
    for (int i = 0; i < 3; ++i) {
        // The first may come before the agent has heard that no window manager runs.
        EXPECT_TRUE(waitUntil([&] {
            const OtherWindow other(desktop.server(), window.geometry.adjusted(-50, -50, 50, 50));
            return waitUntil([&] { return desktop.view().isInFront(window.id, other.id()); }, 1s);
        })) << i;
    }
}

} // namespace
