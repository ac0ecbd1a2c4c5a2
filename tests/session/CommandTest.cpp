#include "platform/linux/include/ExecutableName.h"
#include "tests/session/support/Session.h"
#include "tests/support/WaitUntil.h"

#include <QFile>

#include <gtest/gtest.h>

#include <X11/keysym.h>

namespace
{

constexpr char supportPage[] = "https://www.kivune.example/support/";

/// One session for all of these, each of which leaves no menu and no panel behind.
class Command : public testing::TestWithParam<Session::By>
{
protected:
    static void SetUpTestSuite()
    {
        session = std::make_unique<Session>();
        ASSERT_TRUE(session->start());
    }
    static void TearDownTestSuite() { session.reset(); }

    void TearDown() override { EXPECT_TRUE(session->closeEverything()); }

    static std::unique_ptr<Session> session;
};

std::unique_ptr<Session> Command::session;

INSTANTIATE_TEST_SUITE_P(Chosen, Command, testing::Values(Session::By::Mouse, Session::By::Keys),
                         [](const testing::TestParamInfo<Session::By> &by) {
                             return by.param == Session::By::Mouse ? "ByMouse" : "ByKeys";
                         });

TEST_P(Command, GoesToTheServiceForEachEntryOfTheWorkspaceMenu)
{
    const std::pair<Session::WorkspaceEntry, QByteArray> table[] = {
        {Session::Minimize, "meoa 32793 Minimize"}, {Session::Maximize, "meoa 32795 Maximize"},
        {Session::Restore, "meoa 32796 Restore"},   {Session::Reset, "meoa 32794 Reset"},
        {Session::Options, "meoa 32791 Options"},
    };
    for (const auto &[entry, line] : table) {
        const QByteArrayList before = session->service->events();
        ASSERT_TRUE(session->choose(entry, GetParam()));
        const QByteArrayList expected = before + QByteArrayList{line};
        EXPECT_TRUE(waitUntil([&] { return session->service->events() == expected; })) << line.constData();
    }
}

TEST_P(Command, OpensTheSettingsBesideTheAgentForItsPreferences)
{
    ASSERT_TRUE(session->choose(Session::Preferences, GetParam()));
    qint64 program = 0;
    EXPECT_TRUE(waitUntil([&] {
        program = session->desktop.view().focusOwnerPid();
        return executableName(static_cast<pid_t>(program)) == "kivsettings";
    }));
    EXPECT_FALSE(session->desktop.view().windowsOf(program).isEmpty());
    session->desktop.input().key(XK_Escape);
    EXPECT_TRUE(waitUntil([&] { return !QFile::exists(QStringLiteral("/proc/%1").arg(program)); }));
}

TEST_P(Command, OpensTheSupportPageWithTheDefaultProgram)
{
    const QByteArrayList before = session->browser.opened();
    ASSERT_TRUE(session->choose(Session::Support, GetParam()));
    ASSERT_TRUE(waitUntil([&] { return session->browser.opened().size() > before.size(); }));
    EXPECT_EQ(session->browser.opened(), before + QByteArrayList{supportPage});
    EXPECT_TRUE(session->agent->freeWindows().isEmpty());
}

TEST_P(Command, AsksBeforeADisconnect)
{
    const QByteArrayList before = session->service->events();
    ASSERT_TRUE(session->choose(Session::Disconnect, GetParam()));
    EXPECT_TRUE(session->panel());
    EXPECT_EQ(session->service->events(), before);
}

TEST_P(Command, ShowsTheProductInformation)
{
    ASSERT_TRUE(session->choose(Session::About, GetParam()));
    EXPECT_TRUE(session->panel());
}

} // namespace
