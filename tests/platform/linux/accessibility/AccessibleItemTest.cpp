#include "platform/linux/accessibility/AccessibleItem.h"

#include "platform/StatusItem.h"
#include "platform/linux/accessibility/AccessibleApplication.h"
#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

namespace
{

/// The item by itself in the corner of the screen.
class AccessibleItemTest : public testing::Test
{
protected:
    void SetUp() override
    {
        item.setToolTip(QStringLiteral("Menu"));
        ASSERT_TRUE(waitUntil([this] { return item.frame().has_value(); }));
    }

    [[nodiscard]] QAccessibleInterface &interface() { return *QAccessible::queryAccessibleInterface(&item); }

    StatusItem item;
};

TEST_F(AccessibleItemTest, IsAButtonWithAMenuAtTheHeadOfTheApplication)
{
    EXPECT_EQ(interface().role(), QAccessible::Button);
    EXPECT_TRUE(interface().state().hasPopup);
    EXPECT_EQ(AccessibleApplication().child(0), &interface());
    EXPECT_EQ(interface().rect(), QRect(1098, 0, 22, 22));
}

TEST_F(AccessibleItemTest, HasTheNameThatHostsShowAndTheStateThatNobodySees)
{
    EXPECT_EQ(interface().text(QAccessible::Name), QStringLiteral("Menu"));
    item.setTitle(QStringLiteral("Title"));
    EXPECT_EQ(interface().text(QAccessible::Name), QStringLiteral("Title"));
    EXPECT_EQ(interface().text(QAccessible::Description), QString());
    item.setStateText(QStringLiteral("Active"));
    EXPECT_EQ(interface().text(QAccessible::Description), QStringLiteral("Active"));
}

TEST_F(AccessibleItemTest, IsPressedAsByTheKeyboardUnlessItIsDisabled)
{
    int presses = 0;
    QObject::connect(&item, &StatusItem::pressed, &item, [&] { ++presses; });
    QAccessibleActionInterface *const actions = interface().actionInterface();
    ASSERT_TRUE(actions);
    item.setEnabled(false);
    EXPECT_TRUE(interface().state().disabled);
    EXPECT_EQ(actions->actionNames(), QStringList());
    actions->doAction(QAccessibleActionInterface::pressAction());
    item.setEnabled(true);
    EXPECT_EQ(actions->actionNames(),
              (QStringList{QAccessibleActionInterface::pressAction(), QAccessibleActionInterface::showMenuAction()}));
    actions->doAction(QAccessibleActionInterface::showMenuAction());
    EXPECT_EQ(presses, 0) << "the reader waits for its answer";
    EXPECT_TRUE(waitUntil([&] { return presses == 1; }));
}

} // namespace
