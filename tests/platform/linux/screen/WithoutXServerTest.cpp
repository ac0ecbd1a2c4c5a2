#include "platform/Compositor.h"
#include "platform/StatusBar.h"

#include <QWidget>

#include <gtest/gtest.h>

namespace
{

TEST(WithoutAnXServer, NoCompositorRuns)
{
    EXPECT_FALSE(Compositor::Question().isRunning());
    QWidget window;
    Compositor::announceShadow(window, 3); // To nobody.
}

TEST(WithoutAnXServer, TheStatusBarIs22PointsAtTheTop)
{
    EXPECT_EQ(StatusBar::around({{10, 768}, {22, 22}}), (StatusBar{StatusBar::Edge::Top, 22, {}}));
}

} // namespace
