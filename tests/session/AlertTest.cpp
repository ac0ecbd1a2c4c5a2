#include "tests/session/support/HostileClient.h"
#include "tests/session/support/MenuPicture.h"
#include "tests/session/support/OtherWindow.h"
#include "tests/session/support/Session.h"
#include "tests/session/support/Viewer.h"
#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>

namespace
{

/// One session for all of these, each of which leaves no menu and no panel behind.
class Alert : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        session = std::make_unique<Session>();
        ASSERT_TRUE(session->start());
    }
    static void TearDownTestSuite() { session.reset(); }

    void SetUp() override { earlier = session->service->events().size(); }
    void TearDown() override { EXPECT_TRUE(session->closeEverything()); }

    /// What the agent has asked of the service in this test.
    [[nodiscard]] QByteArrayList asked() const { return session->service->events().mid(earlier); }

    static std::optional<XWindow> openPanel(Session::Entry entry)
    {
        return session->choose(entry, Session::By::Keys) ? session->panel() : std::nullopt;
    }

    /// True when the item opens the menu, as it does unless an alert is up.
    static bool opensTheMenu()
    {
        const bool opened = session->agent->openMenu().has_value();
        return opened && session->closeEverything();
    }

    static std::unique_ptr<Session> session;
    qsizetype earlier = 0;
};

std::unique_ptr<Session> Alert::session;

/// The buttons of each panel from the left.
namespace DisconnectButtons
{
enum { Yes, No, count };
}
namespace AboutButtons
{
enum { Close, Credits, Home, count };
}

} // namespace

TEST_F(Alert, HasButtonsOfOneColourEach)
{
    const std::optional<XWindow> about = openPanel(Session::About);
    ASSERT_TRUE(about);
    const QImage picture = session->desktop.view().grab(about->geometry);
    const QList<QRect> buttons = MenuPicture::buttons(picture);
    ASSERT_EQ(buttons.size(), AboutButtons::count);
    for (const QRect &button : buttons) {
        constexpr int edge = 3;
        const QRect inside = button.adjusted(edge, edge, -edge, -edge); // Its text begins further right.
        for (int y = inside.top(); y <= inside.bottom(); ++y) {
            EXPECT_EQ(picture.pixelColor(inside.left(), y), picture.pixelColor(inside.topLeft())) << y;
        }
    }
}

TEST_F(Alert, SendsNothingWhenTheUserDoesNotWantToDisconnect)
{
    std::optional<XWindow> question = openPanel(Session::Disconnect);
    ASSERT_TRUE(question);
    ASSERT_TRUE(session->clickButton(*question, DisconnectButtons::No, DisconnectButtons::count));
    ASSERT_TRUE(session->agent->waitUntilClosed());

    ASSERT_TRUE(openPanel(Session::Disconnect));
    session->desktop.input().key(XK_Escape);
    ASSERT_TRUE(session->agent->waitUntilClosed());

    // Events keep their order: what comes first now is the first there was.
    ASSERT_TRUE(session->choose(Session::Minimize, Session::By::Keys));
    ASSERT_TRUE(waitUntil([&] { return !asked().isEmpty(); }));
    EXPECT_EQ(asked(), QByteArrayList{"meoa 32793 Minimize"});
}

TEST_F(Alert, DisconnectsOnceTheUserHasConfirmedIt)
{
    qsizetype drops = 0;
    for (const bool byMouse : {true, false}) {
        ++drops;
        Viewer viewer;
        ASSERT_TRUE(viewer.connectTo(session->desktop.server().rfbSocket()));
        earlier = session->service->events().size();
        const std::optional<XWindow> question = openPanel(Session::Disconnect);
        ASSERT_TRUE(question);
        if (byMouse) {
            ASSERT_TRUE(session->clickButton(*question, DisconnectButtons::Yes, DisconnectButtons::count));
        } else {
            session->desktop.input().key(XK_Return);
        }
        EXPECT_TRUE(waitUntil([&] { return session->service->lines().count("disconnected the viewers") == drops; }))
            << session->service->process().output().constData();
        EXPECT_EQ(asked(), QByteArrayList{"meoa 32792 Disconnect the Session"});
        EXPECT_TRUE(waitUntil([&] { return !viewer.isConnected(); })) << "the viewer looks on";
        EXPECT_TRUE(session->agent->waitUntilClosed());
    }
}

TEST_F(Alert, OpensTheHomePageForHomeAlone)
{
    const QByteArrayList before = session->browser.opened();
    const std::optional<XWindow> about = openPanel(Session::About);
    ASSERT_TRUE(about);
    ASSERT_TRUE(session->clickButton(*about, AboutButtons::Home, AboutButtons::count));
    EXPECT_TRUE(
        waitUntil([&] { return session->browser.opened() == before + QByteArrayList{"http://127.0.0.1/home"}; }));
    EXPECT_TRUE(session->agent->waitUntilClosed());

    const std::optional<XWindow> third = openPanel(Session::About);
    ASSERT_TRUE(third);
    ASSERT_TRUE(session->clickButton(*third, AboutButtons::Close, AboutButtons::count));
    ASSERT_TRUE(session->agent->waitUntilClosed());
    for (const xcb_keysym_t key : {XK_Return, XK_Escape}) {
        ASSERT_TRUE(openPanel(Session::About));
        session->desktop.input().key(key);
        ASSERT_TRUE(session->agent->waitUntilClosed());
        EXPECT_TRUE(opensTheMenu());
    }
    EXPECT_EQ(session->browser.opened().size(), before.size() + 1);
}

TEST_F(Alert, ShowsTheCreditsInPlaceOfTheProductInformation)
{
    for (const xcb_keysym_t key : {XK_Return, XK_Escape}) {
        const std::optional<XWindow> about = openPanel(Session::About);
        ASSERT_TRUE(about);
        ASSERT_TRUE(session->clickButton(*about, AboutButtons::Credits, AboutButtons::count));
        ASSERT_TRUE(waitUntil([&] {
            const QList<XWindow> windows = session->agent->freeWindows();
            return windows.size() == 1 && windows.first().id != about->id;
        }));
        const std::optional<XWindow> credits = session->panel();
        ASSERT_TRUE(credits);
        session->desktop.input().key(key);
        EXPECT_TRUE(session->agent->waitUntilClosed());
        EXPECT_TRUE(opensTheMenu()) << "the product information is up again";
    }
    const std::optional<XWindow> about = openPanel(Session::About);
    ASSERT_TRUE(about);
    ASSERT_TRUE(session->clickButton(*about, AboutButtons::Credits, AboutButtons::count));
    ASSERT_TRUE(waitUntil([&] { return !session->agent->freeWindows().contains(*about); }));
    const std::optional<XWindow> credits = session->panel();
    ASSERT_TRUE(credits);
    EXPECT_TRUE(session->clickButton(*credits, 0, 1));
    EXPECT_TRUE(session->agent->waitUntilClosed());
}

TEST_F(Alert, KeepsTheItemFromBeingPressedWhileItIsUpAndTheServiceBeingHeard)
{
    for (const Session::Entry entry : {Session::About, Session::Disconnect}) {
        ASSERT_TRUE(openPanel(entry));
        session->desktop.input().click(session->agent->dockedItem()->geometry.center());
        // This takes two events of the service, which are handled only if the panel lets them be.
        ASSERT_TRUE(session->settle());
        EXPECT_EQ(session->agent->freeWindows().size(), 1) << "the menu opened beside the panel";
        session->desktop.input().key(XK_Return);
        ASSERT_TRUE(session->agent->waitUntilClosed());
        EXPECT_TRUE(opensTheMenu());
    }
}

TEST_F(Alert, IsOverWithoutAnAnswerWhenAnotherProgramDestroysItsWindow)
{
    HostileClient destroyer(session->desktop.server());
    for (const Session::Entry entry : {Session::About, Session::Disconnect}) {
        const std::optional<XWindow> panel = openPanel(entry);
        ASSERT_TRUE(panel);
        destroyer.destroy(panel->id);
        EXPECT_TRUE(waitUntil([&] { return opensTheMenu(); })) << "the item waits for an answer";
    }
}

TEST_F(Alert, EndsWithTheAgent)
{
    Session other;
    ASSERT_TRUE(other.start());
    ASSERT_TRUE(other.choose(Session::About, Session::By::Keys));
    ASSERT_TRUE(other.panel());
    other.service->send("quit");
    ASSERT_TRUE(waitUntil([&] { return !other.agent->process().isRunning(); }));
    EXPECT_EQ(other.agent->process().exitCode(), 0);
    EXPECT_TRUE(other.browser.opened().isEmpty()) << "a panel that nobody answered opened the home page";
}

TEST_F(Alert, StaysInFrontOfWindowsThatComeLater)
{
    const std::optional<XWindow> about = openPanel(Session::About);
    ASSERT_TRUE(about);
    OtherWindow other(session->desktop.server(), about->geometry.adjusted(-20, -20, 20, 20));
    const auto isInFront = [&] { return session->desktop.view().isInFront(about->id, other.id()); };
    EXPECT_TRUE(waitUntil(isInFront));
    other.takeKeyboard();
    other.raise();
    EXPECT_TRUE(
        waitUntil([&] { return session->desktop.view().focusOwnerPid() != session->agent->pid() && isInFront(); }));

    ASSERT_TRUE(session->clickButton(*about, AboutButtons::Close, AboutButtons::count));
    EXPECT_TRUE(session->agent->waitUntilClosed());
}

// The last one: it leaves the session without a window manager.
TEST_F(Alert, WorksWithoutAWindowManager)
{
    Session bare;
    ASSERT_TRUE(bare.start());
    ASSERT_TRUE(bare.desktop.stopWindowManager());
    for (const xcb_keysym_t key : {XK_Escape, XK_Return}) {
        ASSERT_TRUE(bare.choose(Session::Disconnect, Session::By::Mouse));
        const std::optional<XWindow> question = bare.panel();
        ASSERT_TRUE(question);

        OtherWindow other(bare.desktop.server(), question->geometry.adjusted(-20, -20, 20, 20));
        other.takeKeyboard();
        const auto isInFront = [&] { return bare.desktop.view().isInFront(question->id, other.id()); };
        EXPECT_TRUE(waitUntil(isInFront));
        other.raise();
        EXPECT_TRUE(waitUntil(isInFront)) << "it does not come to the front a second time";

        // A click brings the keyboard back.
        bare.desktop.input().click(question->geometry.topLeft() + QPoint(5, 5));
        ASSERT_TRUE(waitUntil([&] { return bare.desktop.view().focusOwnerPid() == bare.agent->pid(); }));
        bare.desktop.input().key(key);
        EXPECT_TRUE(bare.agent->waitUntilClosed());
    }
    EXPECT_TRUE(waitUntil([&] { return bare.service->lines().contains("meoa 32792 Disconnect the Session"); }));
    EXPECT_EQ(bare.service->events().size(), 1);
}
