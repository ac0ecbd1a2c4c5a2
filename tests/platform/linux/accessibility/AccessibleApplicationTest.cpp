#include "platform/linux/accessibility/AccessibleApplication.h"

#include <QMenu>
#include <QWidget>

#include <gtest/gtest.h>

namespace
{

/// Its own interface: the program's other tests have Qt's.
class AccessibleApplicationTest : public testing::Test
{
protected:
    [[nodiscard]] bool has(QObject &object) const
    {
        return application.indexOfChild(QAccessible::queryAccessibleInterface(&object)) >= 0;
    }

    AccessibleApplication application;
};

TEST_F(AccessibleApplicationTest, HasTheWindowsThatTheUserSees)
{
    QWidget seen;
    seen.show();
    QWidget hidden;
    hidden.show();
    hidden.hide();
    QWidget unseen;
    unseen.setAttribute(Qt::WA_DontShowOnScreen);
    unseen.show();
    EXPECT_TRUE(has(seen));
    EXPECT_FALSE(has(hidden));
    EXPECT_FALSE(has(unseen));
}

TEST_F(AccessibleApplicationTest, HasAMenuWhileItIsOpenAndNotItsSubmenus)
{
    QMenu menu;
    QMenu *const submenu = menu.addMenu(QStringLiteral("More"));
    submenu->addAction(QStringLiteral("Entry"));
    EXPECT_FALSE(has(menu));
    menu.popup(QPoint(0, 0));
    submenu->popup(QPoint(50, 0));
    EXPECT_TRUE(has(menu));
    EXPECT_FALSE(has(*submenu));
    menu.close();
    EXPECT_FALSE(has(menu));
}

TEST_F(AccessibleApplicationTest, HasWhatIsAddedUntilItsEnd)
{
    const int before = application.childCount();
    {
        QWidget added; // Without a window as long as it is not shown.
        AccessibleApplication::add(&added);
        EXPECT_EQ(application.childCount(), before + 1);
        EXPECT_EQ(application.child(0), QAccessible::queryAccessibleInterface(&added));
        EXPECT_EQ(application.child(before + 1), nullptr);
    }
    EXPECT_EQ(application.childCount(), before);
}

} // namespace
