#include "platform/StatusItem.h"

#include <QCoreApplication>
#include <QPixmap>
#include <QSystemTrayIcon>

#include <gtest/gtest.h>

namespace
{

class MacStatusItem : public testing::Test
{
protected:
    MacStatusItem()
    {
        QObject::connect(&item, &StatusItem::pressed, &item, [this] { ++presses; });
        QPixmap picture(22, 22);
        picture.fill(Qt::black);
        item.setImage(QIcon(picture));
    }

    /// Presses as the system tells them; what they lead to comes from the event loop.
    int pressesAfter(QSystemTrayIcon::ActivationReason reason)
    {
        const int before = presses;
        Q_EMIT systemItem().activated(reason);
        EXPECT_EQ(presses, before) << "from within the system's call";
        QCoreApplication::sendPostedEvents();
        return presses - before;
    }

    [[nodiscard]] QSystemTrayIcon &systemItem() const { return *item.findChild<QSystemTrayIcon *>(); }

    StatusItem item;
    int presses = 0;
};

} // namespace

TEST_F(MacStatusItem, IsPressedByEitherButtonAndByEachOfTwoFastClicks)
{
    EXPECT_EQ(pressesAfter(QSystemTrayIcon::Trigger), 1);
    EXPECT_EQ(pressesAfter(QSystemTrayIcon::DoubleClick), 1);
    EXPECT_EQ(pressesAfter(QSystemTrayIcon::Context), 1);
    EXPECT_EQ(pressesAfter(QSystemTrayIcon::MiddleClick), 0);
    EXPECT_EQ(pressesAfter(QSystemTrayIcon::Unknown), 0);
}

TEST_F(MacStatusItem, IsShownOnceItHasAnImage)
{
    StatusItem fresh;
    fresh.setToolTip(QStringLiteral("About it"));
    EXPECT_FALSE(fresh.findChild<QSystemTrayIcon *>()->isVisible());
    EXPECT_TRUE(systemItem().isVisible());
    item.setImage(QIcon());
    EXPECT_FALSE(systemItem().isVisible());
}

TEST_F(MacStatusItem, IsNotPressedWhileItIsDisabled)
{
    item.setEnabled(false);
    EXPECT_EQ(pressesAfter(QSystemTrayIcon::Trigger), 0);
    item.setEnabled(true);
    EXPECT_EQ(pressesAfter(QSystemTrayIcon::Trigger), 1);
}

TEST_F(MacStatusItem, IsDrawnInTheColourOfTheMenuBarEnabledOrNot)
{
    EXPECT_TRUE(systemItem().icon().isMask());
    item.setEnabled(false);
    EXPECT_TRUE(systemItem().icon().isMask());
    EXPECT_FALSE(item.image().isMask());
}

TEST_F(MacStatusItem, IsFadedWhileItIsDisabled)
{
    const auto opacity = [this] { return systemItem().icon().pixmap(22, 22).toImage().pixelColor(11, 11).alpha(); };
    EXPECT_EQ(opacity(), 255);
    item.setEnabled(false);
    EXPECT_NEAR(opacity(), 128, 1);
}
