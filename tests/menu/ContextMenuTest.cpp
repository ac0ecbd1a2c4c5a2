#include "menu/ContextMenu.h"

#include <QTimer>

#include <gtest/gtest.h>

namespace
{

/// A view that knows how often it was pressed.
class View final : public QWidget
{
public:
    int presses = 0;

protected:
    void mousePressEvent(QMouseEvent *) override { ++presses; }
};

class ContextMenu : public testing::Test
{
protected:
    ContextMenu() { menu.addAction(QStringLiteral("About")); }

    /// Where the menu was while it was open.
    QRect openedAt(QPoint place, QWidget *view, StatusBar::Edge edge)
    {
        QMouseEvent press(QEvent::MouseButtonPress, QPointF(0, 0), place, Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QRect geometry;
        QTimer::singleShot(0, &menu, [&] {
            geometry = menu.geometry();
            menu.close();
        });
        popUpContextMenu(menu, press, view, edge);
        return geometry;
    }

    QMenu menu;
};

TEST_F(ContextMenu, HangsFromThePlaceOfThePress)
{
    View view;
    EXPECT_EQ(openedAt({100, 50}, &view, StatusBar::Edge::Top).topLeft(), QPoint(100, 50));
    EXPECT_EQ(view.presses, 1);
}

TEST_F(ContextMenu, StandsOnThePlaceOfThePressWhereTheBarIsAtTheBottom)
{
    View view;
    const QRect geometry = openedAt({100, 500}, &view, StatusBar::Edge::Bottom);
    EXPECT_EQ(geometry.left(), 100);
    EXPECT_EQ(geometry.top() + geometry.height(), 500);
}

TEST_F(ContextMenu, HangsToTheRightOfThePlaceWhereTheBarIsAtTheLeft)
{
    View view;
    EXPECT_EQ(openedAt({100, 50}, &view, StatusBar::Edge::Left).topLeft(), QPoint(100, 50));
}

TEST_F(ContextMenu, HangsToTheLeftOfThePlaceWhereTheBarIsAtTheRight)
{
    View view;
    const QRect geometry = openedAt({500, 50}, &view, StatusBar::Edge::Right);
    EXPECT_EQ(geometry.left() + geometry.width(), 500);
    EXPECT_EQ(geometry.top(), 50);
}

TEST_F(ContextMenu, OpensWithoutAView)
{
    EXPECT_EQ(openedAt({100, 50}, nullptr, StatusBar::Edge::Top).topLeft(), QPoint(100, 50));
}

} // namespace
