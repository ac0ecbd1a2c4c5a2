#include "notify/popup/KivNotificationWindow.h"
#include "platform/screen/WindowStacking.h"

#include <QCoreApplication>
#include <QPointer>

#include <gtest/gtest.h>

#include <vector>

// What keepAtStatusLevel() does cannot be seen without a window system: the linker leads its callers here instead.

namespace
{

struct LevelCall {
    const QWidget *window;
    bool wasShown;
};

std::vector<LevelCall> levelCalls;

} // namespace

// NOLINTNEXTLINE(bugprone-reserved-identifier): the linker's name for it
extern "C" void __wrap__Z17keepAtStatusLevelR7QWidget(QWidget &window)
{
    levelCalls.push_back({&window, window.isVisible()});
}

TEST(KivNotificationWindowLevel, IsThatOfTheStatusItemsFromTheMomentAtWhichTheWindowIsShown)
{
    levelCalls.clear();
    const auto record = std::make_shared<KivNotification>();
    record->setMessageText(QStringLiteral("Words"));
    const QPointer<KivNotificationWindow> window = new KivNotificationWindow(record);
    EXPECT_TRUE(levelCalls.empty()) << "the system has no window yet";
    window->showAtScreenPoint({100, 100}, -1);
    ASSERT_EQ(levelCalls.size(), 1U);
    EXPECT_EQ(levelCalls[0].window, window);
    EXPECT_TRUE(levelCalls[0].wasShown);
    window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
