#include "menu/KIVMenuObj.h"
#include "menu/MenuCommands.h"
#include "platform/GraphicalSession.h"
#include "platform/screen/MenuPopUp.h"
#include "shell/TerminationSignals.h"
#include "tests/platform/macos/FakeCoreGraphics.h"
#include "tests/platform/macos/FakeNativeWindows.h"
#include "tests/support/LogLines.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

class MacMenu : public testing::Test
{
protected:
    MacMenu()
    {
        resetNativeWindows();
        displays = {};
        displays.modes = {{1440, 900}, {1920, 1200}};
        displays.present = {1440, 900};
        menu.setFlags(kMenuFlagVisible | kMenuFlagActive);
        menu.setActions({});
    }
    ~MacMenu() override
    {
        displays = {};
        resetNativeWindows();
        QApplication::setDoubleClickInterval(doubleClickInterval);
    }

    /// The entries for the display's sizes, with "*" before the present one.
    [[nodiscard]] QStringList sizes() const
    {
        QStringList titles;
        for (const QAction *item : menu.menu()->actions()) {
            if (item->data().toUInt() == kMenuCmdResolution && item->menu()) {
                for (const QAction *size : item->menu()->actions()) {
                    titles.append((size->isChecked() ? QStringLiteral("*") : QString()) + size->text());
                }
            }
        }
        return titles;
    }

    const int doubleClickInterval = QApplication::doubleClickInterval();
    FakeCoreGraphics &displays = FakeCoreGraphics::instance();
    QTemporaryDir empty;
    Bundle bundle{empty.path()};
    KIVMenuObj menu{bundle};
};

using MacMenuDeathTest = MacMenu;

/// The status with which the event loop ends when this happens while a menu is open.
int endedWhileOpen(const std::function<void()> &happens)
{
    QMenu menu;
    whileNativeMenuIsOpen() = happens;
    QTimer::singleShot(0, &menu, [&] { popUpMenu(menu, QPoint(708, 29)); });
    QTimer::singleShot(std::chrono::seconds(10), &menu, [] { QCoreApplication::exit(1); });
    return QCoreApplication::exec();
}

} // namespace

TEST_F(MacMenu, IsTheSystemsOwnAndOpensBelowTheMenuBarWhereTheMouseIs)
{
    displays.mouse = CGPoint{708, 10};
    menu.menuTrayPressed();
    EXPECT_THAT(toldNativeWindows(), ElementsAre("menu at 708, 871"));
    EXPECT_FALSE(menu.menu()->isVisible());
}

TEST_F(MacMenu, OpensAtItsPlaceOnTheMainScreenWhereverThatIs)
{
    QMenu other;
    displays.bounds = {{100, 50}, {1440, 900}};
    popUpMenu(other, QPoint(110, 80));
    EXPECT_THAT(toldNativeWindows(), ElementsAre("menu at 10, 870"));
}

TEST_F(MacMenu, IsQtsWhereThereAreNoMenusOfTheSystems)
{
    thereAreNativeWindows() = false;
    bool wasShown = false;
    QMenu other;
    other.addAction(QStringLiteral("one"));
    QTimer::singleShot(0, &other, [&] {
        wasShown = other.isVisible();
        other.close();
    });
    popUpMenu(other, QPoint(100, 100));
    EXPECT_TRUE(wasShown);
    EXPECT_THAT(toldNativeWindows(), ElementsAre());
}

TEST_F(MacMenu, ClosesAtAPressOnItsItemThatTheSystemPassesOn)
{
    QApplication::setDoubleClickInterval(0); // Two presses are two.
    displays.mouse = CGPoint{708, 10};
    whileNativeMenuIsOpen() = [this] { menu.menuTrayPressed(); };
    menu.menuTrayPressed();
    EXPECT_THAT(toldNativeWindows(), ElementsAre("menu at 708, 871", "close menu"));
    whileNativeMenuIsOpen() = {};
    toldNativeWindows().clear();
    menu.menuTrayPressed();
    EXPECT_THAT(toldNativeWindows(), ElementsAre("menu at 708, 871")) << "it can be opened again";
}

TEST_F(MacMenu, StaysOpenAtTheSecondPressOfADoubleClickThatTheSystemPassesOn)
{
    displays.mouse = CGPoint{708, 10};
    QApplication::setDoubleClickInterval(60'000);
    whileNativeMenuIsOpen() = [this] { menu.menuTrayPressed(); };
    menu.menuTrayPressed();
    EXPECT_THAT(toldNativeWindows(), ElementsAre("menu at 708, 871"));
}

TEST_F(MacMenu, ClosesWhenTheAgentIsToEnd)
{
    GraphicalSession::end();
    EXPECT_THAT(toldNativeWindows(), ElementsAre()) << "there is none";
    QMenu other;
    whileNativeMenuIsOpen() = [] { GraphicalSession::end(); };
    QTimer::singleShot(0, &other, [&] { popUpMenu(other, QPoint(708, 29)); });
    QCoreApplication::exec();
    EXPECT_THAT(toldNativeWindows(), ElementsAre("menu at 708, 871", "close menu"));
}

TEST_F(MacMenu, ClosesWhenTheSystemAsksTheAgentToQuit)
{
    EXPECT_EQ(endedWhileOpen([] {
                  QEvent quit(QEvent::Quit);
                  QCoreApplication::sendEvent(qApp, &quit);
              }),
              0);
    EXPECT_THAT(toldNativeWindows(), ElementsAre("menu at 708, 871", "close menu"));
}

/// In a process of its own, for the request stays with a process.
TEST_F(MacMenuDeathTest, ClosesAtTheSignalThatEndsTheAgent)
{
    const auto agent = [] {
        const TerminationSignals endTheLoop;
        const int status = endedWhileOpen([] {
            ::raise(SIGTERM);
            QCoreApplication::processEvents(); // As the system's loop of a menu has Qt do.
        });
        const bool isClosed = toldNativeWindows() == std::vector<std::string>{"menu at 708, 871", "close menu"};
        std::_Exit(isClosed ? status : 2);
    };
    EXPECT_EXIT(agent(), testing::ExitedWithCode(0), "");
}

TEST_F(MacMenu, HasTheDisplaysSizesOnceTheSystemSaysThatItOpens)
{
    menu.menuTrayPressed();
    EXPECT_EQ(sizes(), (QStringList{QStringLiteral("1920 x 1200"), QStringLiteral("*1440 x 900")}));
}

TEST_F(MacMenu, LetsNothingThatIsThrownWhileItOpensReachTheSystem)
{
    displays.throwsWhenAskedForModes = true;
    LogLines log;
    EXPECT_NO_THROW(menu.menuTrayPressed());
    EXPECT_THAT(log.takeWarnings(), Contains(HasSubstr("bad_alloc")));
    EXPECT_THAT(QApplication::topLevelWidgets(), testing::Not(Contains(testing::Property(&QWidget::isVisible, true))));
}
