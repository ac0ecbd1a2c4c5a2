#include "menu/KIVMenuObj.h"
#include "menu/MenuCommands.h"
#include "tests/platform/macos/FakeCoreGraphics.h"
#include "tests/platform/macos/FakeNativeWindows.h"
#include "tests/support/LogLines.h"

#include <QApplication>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
        toldNativeWindows().clear();
        displays = {};
        displays.modes = {{1440, 900}, {1920, 1200}};
        displays.present = {1440, 900};
        menu.setFlags(kMenuFlagVisible | kMenuFlagActive);
        menu.setActions({});
    }
    ~MacMenu() override { displays = {}; }

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

    FakeCoreGraphics &displays = FakeCoreGraphics::instance();
    QTemporaryDir empty;
    Bundle bundle{empty.path()};
    KIVMenuObj menu{bundle};
};

} // namespace

TEST_F(MacMenu, IsTheSystemsOwnAndOpensBelowTheMenuBarWhereTheMouseIs)
{
    displays.mouse = CGPoint{708, 10};
    menu.menuTrayPressed();
    EXPECT_THAT(toldNativeWindows(), ElementsAre("menu at 708, 29"));
    EXPECT_FALSE(menu.menu()->isVisible());
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
