#include "platform/StatusBar.h"

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

TEST(StatusBar, IsThePanelUnderThePoint)
{
    const Panel top(QRect(0, 0, 1280, 32));
    EXPECT_EQ(StatusBar::at({1000, 790}), (StatusBar{StatusBar::Edge::Top, 32}));
    const Panel bottom(QRect(0, 760, 1280, 40));
    EXPECT_EQ(StatusBar::at({1000, 20}), (StatusBar{StatusBar::Edge::Bottom, 40}));
}

TEST(StatusBar, Is22PointsAtTheTopWhereNoPanelIs)
{
    EXPECT_EQ(StatusBar::at({1000, 790}), (StatusBar{StatusBar::Edge::Top, 22}));
    const Panel left(QRect(0, 0, 48, 800));
    EXPECT_EQ(StatusBar::at({10, 790}), (StatusBar{StatusBar::Edge::Top, 22}));
    EXPECT_EQ(StatusBar::at({5000, 5000}), (StatusBar{StatusBar::Edge::Top, 22}));
}

} // namespace
