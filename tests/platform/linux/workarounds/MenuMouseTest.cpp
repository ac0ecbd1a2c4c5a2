#include "platform/linux/workarounds/MenuMouse.h"

#include "tests/platform/linux/workarounds/MenuWithMouse.h"

#include <QApplication>

namespace
{

class MoveCounter final : public QObject
{
public:
    int count = 0;

private:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::MouseMove ? 1 : 0;
        return false;
    }
};

class MenuMouseTest : public MenuWithMouse
{
protected:
    static void SetUpTestSuite() { MenuMouse::follow(); }
};

TEST_F(MenuMouseTest, OpensASubmenuWhereverQtSawTheMouseLast)
{
    const QPoint place = placeOf(submenu->menuAction());
    letQtBelieveInTheMouseAt(place);
    open();
    user.move(place);
    EXPECT_TRUE(waitUntil([this] { return isOpen(*submenu); }));
}

TEST_F(MenuMouseTest, ChoosesAnEntryWhereverQtSawTheMouseLast)
{
    const QPoint place = placeOf(enabled);
    letQtBelieveInTheMouseAt(place);
    open();
    user.click(place);
    EXPECT_TRUE(waitUntil([this] { return chosen == enabled; }));
}

TEST_F(MenuMouseTest, LeavesTheMenuOpenOnADisabledEntryWhereverQtSawTheMouseLast)
{
    const QPoint place = placeOf(disabled);
    letQtBelieveInTheMouseAt(place);
    open();
    user.move(place);
    press();
    EXPECT_TRUE(menu.isVisible());
}

TEST_F(MenuMouseTest, ChoosesAnEntryOfASubmenuThatAKeyHasOpened)
{
    const QPoint place = placeOf(choice);
    letQtBelieveInTheMouseAt(place);
    open();
    openSubmenuByKey();
    user.click(place);
    EXPECT_TRUE(waitUntil([this] { return chosen == choice; }));
}

TEST_F(MenuMouseTest, ChoosesAnEntryAfterLeavingTheMenuAndComingBack)
{
    const QPoint place = placeOf(enabled);
    letQtBelieveInTheMouseAt(place);
    open();
    user.move(place);
    ASSERT_TRUE(waitUntil([this] { return menu.activeAction() == enabled; }));
    user.move(faraway);
    ASSERT_TRUE(waitUntil([this] { return !menu.activeAction(); }));
    user.click(place);
    EXPECT_TRUE(waitUntil([this] { return chosen == enabled; }));
}

TEST_F(MenuMouseTest, ChoosesAnEntryAgainAMomentAfter)
{
    const int interval = QApplication::doubleClickInterval();
    QApplication::setDoubleClickInterval(60'000);
    const QPoint place = placeOf(enabled);
    for (int i = 0; i < 3; ++i) {
        chosen = nullptr;
        open();
        user.click(place);
        EXPECT_TRUE(waitUntil([this] { return chosen == enabled; }));
        EXPECT_TRUE(waitUntil([this] { return user.isFree(); }));
        user.move(faraway);
    }
    QApplication::setDoubleClickInterval(interval);
}

TEST_F(MenuMouseTest, TakesAHandThatTrembledForOneThatDidNotMove)
{
    const QPoint place = placeOf(enabled);
    letQtBelieveInTheMouseAt(place);
    user.move(place);
    open();
    MoveCounter moves;
    menu.installEventFilter(&moves);
    user.move(place + QPoint(2, 0));
    press();
    EXPECT_LE(moves.count, 1);
}

} // namespace
