#include "platform/StatusBar.h"

#include "platform/linux/include/XConnection.h"
#include "tests/platform/linux/screen/windows/FakeSway.h"
#include "tests/platform/linux/screen/windows/NamedWindowManager.h"
#include "tests/platform/linux/screen/windows/PublishedWorkArea.h"

#include <QRasterWindow>

#include <gtest/gtest.h>

namespace
{

/// A window at exactly that place, as no window manager runs.
class Panel final : public QRasterWindow
{
public:
    explicit Panel(const QRect &place)
    {
        setFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
        setGeometry(place);
        show();
    }
};

StatusBar bar(StatusBar::Edge edge, float thickness)
{
    return {.edge = edge, .thickness = thickness};
}

/// A status item's usual size.
NSRect itemAt(NSPoint bottomLeft)
{
    return {bottomLeft, {22, 22}};
}

TEST(StatusBar, IsThePanelUnderTheItem)
{
    const Panel top(QRect(0, 0, 1280, 32));
    EXPECT_EQ(StatusBar::around(itemAt({1000, 773})), bar(StatusBar::Edge::Top, 32));
    const Panel bottom(QRect(0, 750, 1280, 40));
    EXPECT_EQ(StatusBar::around(itemAt({1000, 19})), bar(StatusBar::Edge::Bottom, 50));
    const Panel left(QRect(0, 0, 48, 800));
    EXPECT_EQ(StatusBar::around(itemAt({13, 400})), bar(StatusBar::Edge::Left, 48));
}

TEST(StatusBar, IsThePanelUnderTheMouseWhereTheItemIsNotKnown)
{
    const Panel left(QRect(0, 0, 48, 800));
    EXPECT_EQ(StatusBar::around({{0, 400}, {}}), bar(StatusBar::Edge::Left, 48));
    EXPECT_EQ(StatusBar::around({{47, 400}, {}}), bar(StatusBar::Edge::Left, 48));
    EXPECT_EQ(StatusBar::around({{48, 400}, {}}), bar(StatusBar::Edge::Top, 22));
}

TEST(StatusBar, IsWhatTheWorkAreaLeavesWhereAShellFillsTheScreen)
{
    const Panel shell(QRect(0, 0, 1280, 800));
    const PublishedWorkArea area({60, 0, 1220, 800});
    EXPECT_EQ(StatusBar::around(itemAt({19, 400})), bar(StatusBar::Edge::Left, 60));
    EXPECT_EQ(StatusBar::around({{10, 400}, {}}), bar(StatusBar::Edge::Left, 60)) << "at the mouse";
    EXPECT_EQ(StatusBar::around(itemAt({1000, 775})), bar(StatusBar::Edge::Top, 25)) << "beside it";
    const Panel top(QRect(0, 0, 1280, 32));
    EXPECT_EQ(StatusBar::around(itemAt({19, 773})), bar(StatusBar::Edge::Top, 32)) << "under a panel that is seen";
}

TEST(StatusBar, IsWhatSwayLeavesWhichPublishesNoWorkArea)
{
    const FakeSway sway(
        FakeSway::message(R"([{"visible": true, "rect": {"x": 0, "y": 0, "width": 1280, "height": 756}}])"));
    qputenv("SWAYSOCK", sway.path());
    qputenv("WAYLAND_DISPLAY", "wayland-1");
    const NamedWindowManager other("another");
    EXPECT_EQ(StatusBar::around({{1000, 20}, {}}), bar(StatusBar::Edge::Top, 22)) << "its socket is of another display";
    const NamedWindowManager isSway("wlroots wm");
    EXPECT_EQ(StatusBar::around({{1000, 20}, {}}), bar(StatusBar::Edge::Bottom, 44));
    qunsetenv("SWAYSOCK");
    qunsetenv("WAYLAND_DISPLAY");
}

TEST(StatusBar, ReachesAsFarAsTheItemWhereNoPanelIs)
{
    EXPECT_EQ(StatusBar::around(itemAt({1258, 778})), bar(StatusBar::Edge::Top, 22));
    EXPECT_EQ(StatusBar::around(itemAt({1258, 9})), bar(StatusBar::Edge::Bottom, 31));
}

TEST(StatusBar, Is22PointsAtTheTopWhereNothingIs)
{
    EXPECT_EQ(StatusBar::around({{1000, 790}, {}}), bar(StatusBar::Edge::Top, 22));
    EXPECT_EQ(StatusBar::around({{5000, 5000}, {}}), bar(StatusBar::Edge::Top, 22));
}

} // namespace
