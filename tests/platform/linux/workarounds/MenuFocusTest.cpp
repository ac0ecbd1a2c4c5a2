#include "platform/linux/workarounds/MenuFocus.h"

#include "platform/screen/MenuPopUp.h"
#include "tests/platform/linux/workarounds/MenuWithMouse.h"

#include <QTimer>

namespace
{

class MenuFocusTest : public MenuWithMouse
{
};

TEST_F(MenuFocusTest, LeavesNothingBehindOfAMenuThatHasClosed)
{
    openAndClose(3);
    forgetFocusOf(menu);
    EXPECT_EQ(listenersToItsFocus(), 0);
}

TEST_F(MenuFocusTest, IsForgottenEachTimeThatAMenuPopsUp)
{
    for (int i = 0; i < 3; ++i) {
        QTimer::singleShot(0, &menu, [this] {
            EXPECT_TRUE(waitUntil([this] { return QGuiApplication::focusWindow() == menu.windowHandle(); }));
            EXPECT_EQ(listenersToItsFocus(), 1) << "while it is open";
            menu.close();
        });
        popUpMenu(menu, corner);
    }
    EXPECT_EQ(listenersToItsFocus(), 0);
}

TEST_F(MenuFocusTest, IsNoMatterOfAMenuThatWasNeverOpen)
{
    forgetFocusOf(menu);
    EXPECT_FALSE(menu.windowHandle());
}

} // namespace
