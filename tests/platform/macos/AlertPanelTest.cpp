#include "platform/alert/AlertPanel.h"

#include "tests/platform/macos/FakeNativeWindows.h"
#include "tests/support/WaitUntil.h"

#include <QGuiApplication>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::Each;
using testing::ElementsAre;

const AlertPanel::Texts oneButton{QStringLiteral("Title"), QStringLiteral("Message"), QStringLiteral("Ok"), {}, {}};

/// Does something while the panel is up.
void whileUp(const std::function<void()> &work)
{
    resetNativeWindows();
    AlertPanel panel(AlertPanel::Style::Informational, oneButton);
    QTimer::singleShot(0, &panel, [&] {
        work();
        panel.close();
    });
    EXPECT_EQ(panel.runModal(), AlertPanel::NoResponse);
}

} // namespace

TEST(MacAlertPanel, ComesToTheFrontWithTheKeyboard)
{
    whileUp([] { EXPECT_THAT(toldNativeWindows(), ElementsAre("front", "activate")); });
}

TEST(MacAlertPanel, StaysInFrontOfOtherProgramsWithoutTakingTheKeyboardFromThem)
{
    whileUp([] {
        toldNativeWindows().clear();
        Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
        EXPECT_TRUE(waitUntil([] { return toldNativeWindows().size() >= 3; }));
        EXPECT_THAT(toldNativeWindows(), Each(std::string("front")));
    });
}

TEST(MacAlertPanel, LeavesTheOrderOfWindowsAloneOnceItHasBeenAnswered)
{
    AlertPanel panel(AlertPanel::Style::Informational, oneButton);
    toldNativeWindows().clear();
    Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
    EXPECT_THAT(toldNativeWindows(), ElementsAre());
}
