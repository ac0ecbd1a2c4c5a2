#include "tests/session/support/AgentClock.h"
#include "tests/session/support/HungTool.h"
#include "tests/session/support/MenuPicture.h"
#include "tests/session/support/ScriptFile.h"
#include "tests/session/support/Session.h"
#include "tests/session/support/SessionManager.h"
#include "tests/session/support/Viewer.h"
#include "tests/support/WaitUntil.h"

#include <QFile>
#include <QSet>

#include <gtest/gtest.h>

#include <X11/keysym.h>
#include <algorithm>

namespace
{

using namespace std::chrono_literals;

class Resolution : public testing::Test
{
protected:
    /// The sizes that the display has modes of, each once.
    [[nodiscard]] QList<QSize> sizes()
    {
        QList<QSize> sizes = session.desktop.view().modeSizes();
        std::ranges::sort(sizes, {}, [](QSize size) { return std::pair(size.width(), size.height()); });
        sizes.erase(std::unique(sizes.begin(), sizes.end()), sizes.end());
        return sizes;
    }

    /// Where an entry is whose width no other size shares: they are listed widest first.
    [[nodiscard]] int placeOf(QSize size)
    {
        const QList<QSize> all = sizes();
        EXPECT_TRUE(all.contains(size));
        return static_cast<int>(
            std::ranges::count_if(all, [size](QSize other) { return other.width() > size.width(); }));
    }

    [[nodiscard]] std::optional<XWindow> openSizes(Session::By by = Session::By::Mouse)
    {
        return session.openSubmenu(Session::Resolution, sizes().size(), by);
    }

    bool choose(QSize size, Session::By by = Session::By::Mouse)
    {
        const std::optional<XWindow> submenu = openSizes(by);
        if (!submenu) {
            return false;
        }
        if (by == Session::By::Mouse) {
            session.desktop.input().click(session.entriesOf(*submenu, sizes().size()).at(placeOf(size)).center());
        } else {
            session.desktop.input().key(XK_Down, placeOf(size));
            session.desktop.input().key(XK_Return);
        }
        return true;
    }

    [[nodiscard]] bool hasSize(QSize size)
    {
        return waitUntil([&] { return session.desktop.view().screenSize() == size; });
    }

    /// Opens the submenu and returns the places of the entries that are checked.
    [[nodiscard]] QList<int> checkedPlaces()
    {
        // The panel takes the new size in by itself.
        EXPECT_TRUE(waitUntil([&] { return session.agent->isDocked(); }));
        const std::optional<XWindow> submenu = openSizes();
        const QList<int> checked =
            submenu ? MenuPicture::marked(session.desktop.view().grab(submenu->geometry)) : QList<int>();
        EXPECT_TRUE(session.closeEverything());
        return checked;
    }

    Session session;
};

class ResolutionWithToolOfTheTest : public Resolution
{
protected:
    void SetUp() override
    {
        Session::Setting setting;
        setting.program = Agent::Program::WithToolOfTheTest;
        setting.agentsEnvironment.insert(QStringLiteral("KIV_TEST_SERVICE_TOOL"), tool());
        manager.addTo(setting.agentsEnvironment);
        clock.addTo(setting.agentsEnvironment);
        ASSERT_TRUE(session.start(setting));
    }

    [[nodiscard]] QString tool() const { return folder.filePath(QStringLiteral("tool")); }

    /// The tool writes its arguments down, and then does this.
    void setTool(const QByteArray &commands)
    {
        writeScript(tool(), "echo \"$*\" >> '" + calls().toLocal8Bit() + "'\n" + commands);
    }

    [[nodiscard]] QString calls() const { return folder.filePath(QStringLiteral("calls")); }

    [[nodiscard]] QByteArray recordedCalls() const
    {
        QFile file(calls());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// Chooses a size, and returns once the tool runs, which does not end by itself.
    void hangInTheTool()
    {
        m_hung.emplace(tool());
        ASSERT_TRUE(choose(QSize(1024, 768)));
        ASSERT_TRUE(waitUntil([this] { return m_hung->hasStarted(); }));
    }

    QTemporaryDir folder;
    SessionManager manager;
    AgentClock clock;

private:
    std::optional<HungTool> m_hung;
};

constexpr QSize wide{1280, 800};
constexpr QSize narrow{1024, 768};
constexpr QSize small{800, 600};

} // namespace

TEST_F(Resolution, SwitchesTheDisplayAndTellsItsViewers)
{
    ASSERT_TRUE(session.start());
    Viewer viewer;
    ASSERT_TRUE(viewer.connectTo(session.desktop.server().rfbSocket()));
    ASSERT_EQ(viewer.size(), wide);

    ASSERT_TRUE(choose(narrow));
    EXPECT_TRUE(hasSize(narrow));
    EXPECT_TRUE(waitUntil([&] { return viewer.size() == narrow; }));
    EXPECT_EQ(checkedPlaces(), QList<int>{placeOf(narrow)});

    ASSERT_TRUE(choose(small, Session::By::Keys));
    EXPECT_TRUE(hasSize(small));
    EXPECT_TRUE(waitUntil([&] { return viewer.size() == small; }));
    EXPECT_EQ(checkedPlaces(), QList<int>{placeOf(small)});
    EXPECT_TRUE(session.agent->freeWindows().isEmpty());
    EXPECT_TRUE(session.service->lines().isEmpty()) << "a size is no command";
}

TEST_F(Resolution, SurvivesWhatHappensWhileTheMenuIsOpen)
{
    ASSERT_TRUE(session.start());
    Service &service = *session.service;
    const auto openWorkspace = [&] { return session.openSubmenu(Session::Workspace, Session::workspaceEntryCount); };
    const auto pictureOf = [&](const XWindow &window) { return session.desktop.view().grab(window.geometry); };

    // The service disables the very entry that the user has in view.
    std::optional<XWindow> submenu = openWorkspace();
    ASSERT_TRUE(submenu);
    const QList<QRect> entries = session.entriesOf(*submenu, Session::workspaceEntryCount);
    const QImage enabled = pictureOf(*submenu);
    service.send("actions none");
    ASSERT_TRUE(waitUntil([&] { return pictureOf(*submenu) != enabled; }));
    session.desktop.input().click(entries.at(Session::Maximize).center());
    ASSERT_TRUE(session.settle());
    EXPECT_EQ(session.agent->freeWindows().size(), 2) << "a disabled entry was chosen";
    EXPECT_TRUE(session.closeEverything());
    EXPECT_TRUE(service.lines().isEmpty());

    // It takes the item away, and brings it back.
    service.send("actions 32793");
    ASSERT_TRUE(session.settle());
    submenu = openWorkspace();
    ASSERT_TRUE(submenu);
    service.send("flags 0");
    ASSERT_TRUE(waitUntil([&] { return !session.agent->dockedItem(); }));
    EXPECT_EQ(session.agent->freeWindows().size(), 2);
    session.desktop.input().click(session.entriesOf(*submenu, Session::workspaceEntryCount).first().center());
    EXPECT_TRUE(session.agent->waitUntilClosed());
    EXPECT_TRUE(waitUntil([&] { return service.lines().contains("meoa 32793 Minimize"); }));
    service.send("flags 6");
    ASSERT_TRUE(waitUntil([&] { return session.agent->isDocked(); }));

    // Somebody else switches the size: the list, made when the menu opened, still leads to the sizes that it shows.
    submenu = openSizes();
    ASSERT_TRUE(submenu);
    ASSERT_TRUE(session.desktop.switchTo(narrow));
    ASSERT_TRUE(hasSize(narrow));
    ASSERT_TRUE(session.agent->process().isRunning());
    ASSERT_EQ(session.agent->freeWindows().size(), 2) << "the menu has closed";
    session.desktop.input().click(session.entriesOf(*submenu, sizes().size()).at(placeOf(small)).center());
    EXPECT_TRUE(hasSize(small));
    EXPECT_TRUE(session.closeEverything());
    EXPECT_EQ(checkedPlaces().size(), 1);
}

TEST_F(ResolutionWithToolOfTheTest, IsJudgedByTheDisplayAndNotByTheTool)
{
    // No tool at all.
    ASSERT_TRUE(choose(narrow));
    std::optional<XWindow> alert = session.panel();
    ASSERT_TRUE(alert);
    session.desktop.input().click(session.agent->dockedItem()->geometry.center());
    ASSERT_TRUE(session.settle());
    EXPECT_EQ(session.agent->freeWindows().size(), 1) << "the menu opened beside the alert";
    ASSERT_TRUE(session.clickButton(*alert, 0, 1));
    ASSERT_TRUE(session.agent->waitUntilClosed());
    EXPECT_EQ(session.desktop.view().screenSize(), wide);
    EXPECT_EQ(checkedPlaces(), QList<int>{placeOf(wide)});
    EXPECT_TRUE(session.service->lines().isEmpty());

    // One that says that all went well.
    setTool("exit 0");
    for (const xcb_keysym_t key : {XK_Return, XK_Escape}) {
        ASSERT_TRUE(choose(narrow));
        ASSERT_TRUE(session.panel());
        session.desktop.input().key(key);
        ASSERT_TRUE(session.agent->waitUntilClosed());
    }
    EXPECT_EQ(session.desktop.view().screenSize(), wide);
    const QByteArray call = "dspcmd set -w 1024 -h 768 -c\n";
    EXPECT_EQ(recordedCalls(), call + call);

    // The size that the display has; then one that switches it and says that this failed.
    setTool("xrandr --size 1024x768\nexit 1");
    ASSERT_TRUE(choose(wide));
    ASSERT_TRUE(session.agent->waitUntilClosed());
    ASSERT_TRUE(choose(narrow));
    EXPECT_TRUE(hasSize(narrow));
    EXPECT_EQ(recordedCalls(), call + call + call) << "a tool was started for nothing";
    EXPECT_EQ(checkedPlaces(), QList<int>{placeOf(narrow)});
    EXPECT_TRUE(session.agent->freeWindows().isEmpty()) << "a success is taken for a failure";
}

TEST_F(ResolutionWithToolOfTheTest, IsSaidToBeWaitedForFromTheThirtiethSecondOn)
{
    const HungTool tool(this->tool());
    const std::optional<XWindow> submenu = openSizes();
    ASSERT_TRUE(submenu);
    clock.stop();
    session.desktop.input().click(session.entriesOf(*submenu, sizes().size()).at(placeOf(narrow)).center());
    ASSERT_TRUE(waitUntil([&] { return tool.hasStarted(); }));
    const auto isSaid = [&] { return session.agent->standardError().contains("still waiting for "); };
    clock.advance(29s);
    EXPECT_FALSE(waitUntil(isSaid, 500ms)) << session.agent->standardError().constData();
    clock.advance(2s);
    EXPECT_TRUE(waitUntil(isSaid)) << session.agent->standardError().constData();
}

TEST_F(ResolutionWithToolOfTheTest, IsWaitedForUntilTheSessionEndsBySignal)
{
    ASSERT_NO_FATAL_FAILURE(hangInTheTool());
    session.agent->process().terminate();
    EXPECT_TRUE(waitUntil([this] { return !session.agent->process().isRunning(); }));
    EXPECT_EQ(session.agent->process().exitCode(), EXIT_SUCCESS);
}

TEST_F(ResolutionWithToolOfTheTest, IsWaitedForUntilTheSessionManagerEndsTheSession)
{
    ASSERT_NO_FATAL_FAILURE(hangInTheTool());
    ASSERT_TRUE(manager.beginLogOutAndCancel());
    ASSERT_TRUE(manager.logOut()) << "it has ended though the user stays";
    EXPECT_TRUE(waitUntil([this] { return !session.agent->process().isRunning(); }));
    EXPECT_EQ(session.agent->process().exitCode(), EXIT_SUCCESS);
}

TEST_F(ResolutionWithToolOfTheTest, IsWaitedForUntilTheSessionManagerDies)
{
    ASSERT_NO_FATAL_FAILURE(hangInTheTool());
    ASSERT_TRUE(manager.die());
    EXPECT_TRUE(waitUntil([this] { return !session.agent->process().isRunning(); }));
    EXPECT_EQ(session.agent->process().exitCode(), EXIT_SUCCESS);
}

TEST_F(ResolutionWithToolOfTheTest, IsWaitedForUntilTheSessionsDisplayGoes)
{
    ASSERT_NO_FATAL_FAILURE(hangInTheTool());
    session.desktop.stopServer();
    EXPECT_TRUE(waitUntil([this] { return !session.agent->process().isRunning(); }));
    EXPECT_EQ(session.agent->process().exitCode(), EXIT_FAILURE);
}

TEST_F(Resolution, StandsOnceThoughTheDisplayHasItAtSeveralRates)
{
    Session::Setting setting;
    setting.server = Desktop::Server::SeveralRates;
    ASSERT_TRUE(session.start(setting));
    ASSERT_GT(session.desktop.view().modeSizes().size(), sizes().size()) << "no size has several rates";
    ASSERT_GT(session.desktop.view().modeSizes().count(narrow), 1);
    EXPECT_TRUE(openSizes());
    EXPECT_TRUE(session.closeEverything());

    ASSERT_TRUE(choose(narrow));
    EXPECT_TRUE(hasSize(narrow));
    EXPECT_EQ(checkedPlaces(), QList<int>{placeOf(narrow)});
}
