#include "platform/data/PropertyList.h"
#include "platform/linux/include/ExecutableName.h"
#include "tests/session/support/Session.h"
#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>

namespace
{

/// The settings as the window has saved them.
QVariantMap saved(const Desktop &desktop)
{
    const QString home = desktop.environment().value(QStringLiteral("HOME"));
    return PropertyList::readFile(home + QLatin1String("/Library/Preferences/com.tamborel.kivmenua.plist")).toMap();
}

} // namespace

TEST(Settings, ReachTheAgentOnceTheyAreChosenInTheirWindow)
{
    Session session;
    Session::Setting setting;
    setting.agentsEnvironment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("kiv.queue=true"));
    ASSERT_TRUE(session.start(setting));
    ASSERT_TRUE(session.choose(Session::Preferences, Session::By::Mouse));
    ASSERT_TRUE(waitUntil(
        [&] { return executableName(static_cast<pid_t>(session.desktop.view().focusOwnerPid())) == "kivsettings"; }));
    ASSERT_FALSE(session.agent->standardError().contains("settings read from"));

    session.desktop.input().key(XK_space); // Its first switch.
    EXPECT_TRUE(waitUntil([&] { return session.agent->standardError().contains("settings read from"); }))
        << session.agent->standardError().constData();
    EXPECT_EQ(saved(session.desktop).value(QStringLiteral("KivNotificationShowUpdates")), QVariant(false));
    session.desktop.input().key(XK_Escape);
}
