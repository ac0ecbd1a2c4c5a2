#include "platform/linux/LatePresses.h"

#include "tests/session/XInput.h"
#include "tests/support/TestXServer.h"
#include "tests/support/WaitUntil.h"

#include <QEvent>
#include <QWindow>

#include <gtest/gtest.h>

namespace
{

/// A window in which the mouse is, and which counts what Qt hands on to it.
class Target final : public QWindow
{
public:
    Target()
    {
        setFlags(Qt::BypassWindowManagerHint);
        setGeometry(100, 100, 100, 100);
        show();
        EXPECT_TRUE(waitUntil([this] { return isExposed(); }));
    }

    int presses = 0;
    int releases = 0;

protected:
    bool event(QEvent *event) override
    {
        const bool isPress = event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
        presses += isPress ? 1 : 0;
        releases += event->type() == QEvent::MouseButtonRelease ? 1 : 0;
        return QWindow::event(event);
    }
};

class LatePressesTest : public testing::Test
{
protected:
    void SetUp() override
    {
        static const bool once = [] {
            LatePresses::keepFromQt();
            return true;
        }();
        EXPECT_TRUE(once);
        user.move({150, 150});
    }
    [[nodiscard]] bool clickReaches(const Target &window)
    {
        user.press();
        user.release();
        return waitUntil([&] { return window.presses > 0 && window.releases > 0; });
    }

    /// Everything that was done before is known to Qt after that.
    static void catchUp() { const Target other; }

    XInput user{testXServer()};
};

TEST_F(LatePressesTest, ReachAWindowThatIsShown)
{
    Target window;
    EXPECT_TRUE(clickReaches(window));
}

TEST_F(LatePressesTest, DoNotReachAWindowThatWasHiddenBeforeTheServerKnewOfIt)
{
    Target window;
    user.holdServer();
    window.hide();
    user.press();
    user.letServerGo();
    user.release();
    catchUp();
    EXPECT_EQ(window.presses, 0);
}

TEST_F(LatePressesTest, ReachAWindowThatWasHiddenAndIsShownAgain)
{
    Target window;
    window.hide();
    ASSERT_TRUE(waitUntil([&] { return !window.isExposed(); }));
    window.show();
    ASSERT_TRUE(waitUntil([&] { return window.isExposed(); }));
    EXPECT_TRUE(clickReaches(window));
}

} // namespace
