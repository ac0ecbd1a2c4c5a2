#include "platform/alert/AccessibleAlert.h"

#include "platform/alert/AlertPanel.h"

#include <gtest/gtest.h>

namespace
{

TEST(AccessibleAlert, IsAnAlertThatIsReadFromItsTitleAndItsWordsWithoutTabs)
{
    AlertPanel panel(
        AlertPanel::Style::Informational,
        {QStringLiteral("Title"), QStringLiteral("Version:\t\t1.0\nYear:\t2026"), QStringLiteral("Ok"), {}, {}});
    const QAccessibleInterface *const alert = QAccessible::queryAccessibleInterface(&panel);
    ASSERT_TRUE(alert);
    EXPECT_EQ(alert->role(), QAccessible::AlertMessage);
    EXPECT_EQ(alert->text(QAccessible::Name), QStringLiteral("Title"));
    EXPECT_EQ(alert->text(QAccessible::Description), QStringLiteral("Version: 1.0\nYear: 2026"));
    EXPECT_FALSE(alert->state().modal);
    panel.setModal(true);
    EXPECT_TRUE(alert->state().modal);
}

} // namespace
