#include "tests/session/support/RawCommand.h"
#include "tests/session/support/Service.h"
#include "tests/session/support/SessionWithMessages.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <X11/keysym.h>

namespace
{

/// What the agent says of a session in which much happens.
class Log : public SessionWithMessages
{
protected:
    void askForDecisions()
    {
        agent->environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("kiv.*=true"));
    }

    /// A session with a message for others and one for all, a stranger, a service that comes and goes, and a command
    /// for it before and after.
    void letMuchHappen()
    {
        setPreferences(1, 4, 1);
        ASSERT_TRUE(start({{{.id = "1", .minVersion = "9.9"}, {.id = "2", .type = "news"}}}));
        const std::optional<XWindow> window = popUp();
        ASSERT_TRUE(window);
        click(*window, DoNotRemindMeLater);
        ASSERT_TRUE(agent->waitUntilClosed());

        std::optional<Service> service(desktop);
        ASSERT_TRUE(service->attach(*agent));
        ASSERT_TRUE(service->allow(*agent, "32793"));
        std::optional<BusPeer> stranger(desktop.bus());
        EXPECT_EQ(RawCommand::send(*stranger, agent->pid(),
                                   {RawCommand::command("meso"), RawCommand::sender(::getpid()), RawCommand::flags(0)}),
                  0);
        stranger.reset();
        const std::optional<XWindow> menu = agent->openMenu();
        ASSERT_TRUE(menu);
        desktop.input().key(XK_Escape);
        ASSERT_TRUE(agent->waitUntilClosed());
        service->send("hint Good morning");
        const std::optional<XWindow> hint = popUp();
        ASSERT_TRUE(hint);
        clickClose(*hint);
        ASSERT_TRUE(agent->waitUntilClosed());
    }

    /// The lines in which one of the patterns is found; "-" where there is none.
    void expectLines(const QStringList &patterns) const
    {
        const QStringList lines = QString::fromUtf8(agent->standardError()).split(u'\n');
        for (const QString &pattern : patterns) {
            EXPECT_FALSE(lines.filter(QRegularExpression(u'^' + pattern + u'$')).isEmpty())
                << qPrintable(pattern) << " is in none of\n"
                << qPrintable(lines.join(u'\n'));
        }
    }
};

TEST_F(Log, TellsEachDecisionWhenAsked)
{
    askForDecisions();
    ASSERT_NO_FATAL_FAILURE(letMuchHappen());
    expectLines({
        QStringLiteral("kiv\\.item: attempt 1: the item has a place"),
        QStringLiteral("kiv\\.item: the item is in the tray: there is a tray and no StatusNotifierItem host"),
        QStringLiteral("kiv\\.item: the tray has taken the item in"),
        QStringLiteral("kiv\\.item: opens the menu at \\(\\d+, \\d+\\), pressed at .*; the item's place is known"),
        QStringLiteral("kiv\\.link: on the session bus at \".*\" as \":1\\.\\d+\""),
        QStringLiteral("kiv\\.link: receives events as \"com\\.tamborel\\.kivune\\.p%1\"").arg(agent->pid()),
        QStringLiteral("kiv\\.link: process \\d+ owns this agent now; before it was process 0"),
        QStringLiteral("kiv\\.link: refused meso of process %1: process \\d+ owns this agent").arg(::getpid()),
        QStringLiteral("kiv\\.link: commands allowed: QList\\(32793\\)"),
        QStringLiteral("kiv\\.feed: fetches \"http://.*lastId=.*\""),
        QStringLiteral("kiv\\.feed: the document of \\d+ bytes has been read"),
        QStringLiteral("kiv\\.queue: message \"1\" is not for this installation: its \"minVersion\" does not fit"),
        QStringLiteral("kiv\\.queue: message \"2\" waits among 1"),
        QStringLiteral("kiv\\.popup: shows message \"2\" at .*"),
        QStringLiteral("kiv\\.popup: closes; .*"),
    });
    EXPECT_TRUE(agent->systemLog().isEmpty());
}

TEST_F(Log, SaysNothingOfDecisionsUnlessAsked)
{
    ASSERT_NO_FATAL_FAILURE(letMuchHappen());
    EXPECT_EQ(agent->standardError(), QByteArray());
    EXPECT_TRUE(agent->systemLog().isEmpty());
}

TEST_F(Log, HurtsNobodyWithoutAStandardError)
{
    agent->starter = {QStringLiteral("/bin/sh"), QStringLiteral("-c"), QStringLiteral("exec \"$0\" 2>&-")};
    askForDecisions();
    ASSERT_NO_FATAL_FAILURE(letMuchHappen());
}

} // namespace
