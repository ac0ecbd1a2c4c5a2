#include "tests/session/support/OtherWindow.h"
#include "tests/session/support/Service.h"
#include "tests/session/support/SessionWithMessages.h"
#include "tests/support/ChildProcess.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>

namespace
{

using namespace std::chrono_literals;

using Entries = MessageCache::Entries;

/// A user who works in another program by keyboard while a message comes.
class PopUpKeyboard : public SessionWithMessages
{
protected:
    bool start(const QList<FeedMessage> &messages)
    {
        editor.emplace(desktop.server(), QRect(100, 300, 300, 200));
        editor->takeKeyboard();
        return SessionWithMessages::start({messages});
    }

    /// Runs what a key is bound to; its exit status.
    int askFor(const QStringList &arguments)
    {
        ChildProcess program;
        program.environment = desktop.environment();
        EXPECT_TRUE(program.start(QStringLiteral(KIV_SHOW_MENU), arguments));
        EXPECT_TRUE(waitUntil([&] { return !program.isRunning(); }));
        return program.exitCode();
    }
    int askForMessage() { return askFor({QStringLiteral("--message")}); }
    /// The same, and waits until the pop-up shows where its keys are.
    [[nodiscard]] bool bringKeyboard(const XWindow &window)
    {
        const QImage before = settledPicture(window);
        return askForMessage() == 0 && waitUntil([&] { return desktop.view().grab(window.geometry) != before; }) &&
               isHeld();
    }
    [[nodiscard]] bool isHeld() { return !editor->canHoldKeyboard(); }
    [[nodiscard]] bool isGivenBack()
    {
        return waitUntil([this] { return editor->canHoldKeyboard(); });
    }
    /// Whether what is typed reaches the program that the user works in, and nobody else.
    [[nodiscard]] bool isTypedIntoTheEditor(xcb_keysym_t symbol)
    {
        const int before = editor->keysHeard();
        desktop.input().key(symbol);
        return waitUntil([&] { return editor->keysHeard() == before + 1; }, 2s);
    }

    std::optional<OtherWindow> editor;
};

TEST_F(PopUpKeyboard, IsLeftToTheProgramInWhichTheUserTypesUntilItIsAskedFor)
{
    ASSERT_TRUE(start({{.id = "1", .repeat = 5}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    const QImage before = settledPicture(*window);
    EXPECT_TRUE(isTypedIntoTheEditor(XK_Tab));
    EXPECT_TRUE(isTypedIntoTheEditor(XK_Return));
    EXPECT_EQ(desktop.view().grab(window->geometry), before);
    EXPECT_EQ(agent->freeWindows(), QList<XWindow>{*window});
}

TEST_F(PopUpKeyboard, GoesRoundTheButtonsAndIsGivenBackByEscape)
{
    ASSERT_TRUE(start({{.id = "1", .repeat = 5}, {.id = "2"}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    const QImage untouched = settledPicture(*window);
    ASSERT_TRUE(bringKeyboard(*window));
    const qint64 focusOwner = desktop.view().focusOwnerPid();
    EXPECT_NE(focusOwner, agent->pid()) << "the focus stays where it is";
    const QImage first = settledPicture(*window);
    const int typed = editor->keysHeard();
    desktop.input().key(XK_Tab);
    const QImage second = settledPicture(*window);
    EXPECT_NE(first, second);
    desktop.input().key(XK_Right);
    EXPECT_EQ(settledPicture(*window), first) << "it comes round";
    desktop.input().key(XK_Up);
    EXPECT_EQ(settledPicture(*window), second);
    EXPECT_EQ(editor->keysHeard(), typed);

    desktop.input().key(XK_Escape);
    ASSERT_TRUE(isGivenBack());
    EXPECT_TRUE(isTypedIntoTheEditor(XK_a));
    EXPECT_EQ(settledPicture(*window), untouched);
    EXPECT_EQ(agent->freeWindows(), QList<XWindow>{*window});
    EXPECT_EQ(cache(), (Entries{"1x5", "2x1"}));
}

TEST_F(PopUpKeyboard, PressesTheButtonThatItIsAtAndIsGivenBack)
{
    ASSERT_TRUE(start({{.id = "1", .repeat = 5}, {.id = "2"}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    ASSERT_TRUE(bringKeyboard(*window));
    desktop.input().key(XK_Tab);
    desktop.input().key(XK_space);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_EQ(cache(), Entries{"2x1"}) << "that was not Do Not Remind Me Later";
    ASSERT_TRUE(isGivenBack());
    EXPECT_TRUE(isTypedIntoTheEditor(XK_a));
}

TEST_F(PopUpKeyboard, PressesCloseOfAHintByReturn)
{
    ASSERT_TRUE(start({}));
    Service service(desktop);
    ASSERT_TRUE(service.attach(*agent));
    service.send("hint The server restarts at noon");
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    ASSERT_TRUE(bringKeyboard(*window));
    desktop.input().key(XK_Return);
    EXPECT_TRUE(agent->waitUntilClosed());
    EXPECT_TRUE(isGivenBack());
}

TEST_F(PopUpKeyboard, OpensTheLinkFirstAndIsGivenBackForTheBrowser)
{
    ASSERT_TRUE(start({{.id = "1", .repeat = 5, .text = "http://127.0.0.1/news is where to read more."}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    ASSERT_TRUE(bringKeyboard(*window));
    clock.stop(); // It stays for a second, and gives the keyboard back in any case when it goes.
    desktop.input().key(XK_Return);
    EXPECT_TRUE(waitUntil([this] { return browser.opened() == QByteArrayList{"http://127.0.0.1/news"}; }));
    EXPECT_TRUE(isGivenBack());
    clock.advance(2s);
    EXPECT_TRUE(agent->waitUntilClosed());
}

TEST_F(PopUpKeyboard, IsGivenBackByAClickElsewhereWhichLeavesThePopUp)
{
    ASSERT_TRUE(start({{.id = "1", .repeat = 5}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    const QImage untouched = settledPicture(*window);
    ASSERT_TRUE(bringKeyboard(*window));
    desktop.input().click(firstWord(*window));
    EXPECT_FALSE(waitUntil([this] { return !isHeld(); }, 300ms)) << "a click into it is none elsewhere";
    desktop.input().click({250, 400});
    ASSERT_TRUE(isGivenBack());
    EXPECT_TRUE(isTypedIntoTheEditor(XK_a));
    EXPECT_EQ(settledPicture(*window), untouched);
    EXPECT_EQ(agent->freeWindows(), QList<XWindow>{*window});
}

TEST_F(PopUpKeyboard, StillLetsTheMousePressAButton)
{
    ASSERT_TRUE(start({{.id = "1", .repeat = 5}, {.id = "2"}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    ASSERT_TRUE(bringKeyboard(*window));
    click(*window, DoNotRemindMeLater);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_EQ(cache(), Entries{"2x1"});
    EXPECT_TRUE(isGivenBack());
}

TEST_F(PopUpKeyboard, IsGivenBackWhenItsTimeIsOver)
{
    ASSERT_TRUE(start({{.id = "1", .repeat = 5}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    ASSERT_TRUE(bringKeyboard(*window));
    clock.advance(31s);
    ASSERT_TRUE(agent->waitUntilClosed());
    ASSERT_TRUE(isGivenBack());
    EXPECT_TRUE(isTypedIntoTheEditor(XK_a));
}

TEST_F(PopUpKeyboard, StaysWhereItIsWhenItIsAskedForAgain)
{
    ASSERT_TRUE(start({{.id = "1", .repeat = 5}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    ASSERT_TRUE(bringKeyboard(*window));
    desktop.input().key(XK_Tab);
    const QImage second = settledPicture(*window);
    EXPECT_EQ(askForMessage(), 0);
    EXPECT_EQ(settledPicture(*window), second);
    EXPECT_TRUE(waitUntil([this] { return isHeld(); }));
    desktop.input().key(XK_Escape);
    EXPECT_TRUE(isGivenBack());
}

TEST_F(PopUpKeyboard, PassesToTheMenuThatIsAskedForAndFromThereToWhoHadItFirst)
{
    ASSERT_TRUE(start({{.id = "1", .repeat = 5}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    const QImage untouched = settledPicture(*window);
    ASSERT_TRUE(bringKeyboard(*window));
    EXPECT_EQ(askFor({}), 0);
    ASSERT_TRUE(waitUntil([this] { return agent->freeWindows().size() == 2; }));
    EXPECT_TRUE(waitUntil([this] { return isHeld(); }));
    EXPECT_EQ(askForMessage(), 0) << "the menu keeps it";
    desktop.input().key(XK_Escape);
    ASSERT_TRUE(waitUntil([this] { return agent->freeWindows().size() == 1; }));
    ASSERT_TRUE(isGivenBack());
    EXPECT_TRUE(isTypedIntoTheEditor(XK_a));
    EXPECT_EQ(agent->freeWindows(), QList<XWindow>{*window});
    EXPECT_EQ(settledPicture(*window), untouched) << "it shows a ring";
}

TEST_F(PopUpKeyboard, IsRefusedWhileAPanelHasToBeAnsweredFirst)
{
    ASSERT_TRUE(start({{.id = "1", .repeat = 5}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    ASSERT_TRUE(agent->openMenu());
    desktop.input().key(XK_Up);
    desktop.input().key(XK_Return);
    ASSERT_TRUE(waitUntil([this] { return agent->freeWindows().size() == 2 && desktop.input().isFree(); }));
    ASSERT_TRUE(waitUntil([this] { return desktop.view().focusOwnerPid() == agent->pid(); })) << "About has not come";
    EXPECT_EQ(askForMessage(), 1);
    EXPECT_FALSE(isHeld());
}

TEST_F(PopUpKeyboard, IsAskedForByNoOtherOption)
{
    ASSERT_TRUE(start({{.id = "1", .repeat = 5}}));
    ASSERT_TRUE(popUp());
    EXPECT_EQ(askFor({QStringLiteral("--massage")}), 1);
    EXPECT_EQ(askFor({QStringLiteral("--message"), QStringLiteral("1")}), 1);
    EXPECT_FALSE(waitUntil([this] { return isHeld(); }, 300ms));
}

TEST_F(PopUpKeyboard, IsRefusedWhereThereIsNoPopUp)
{
    ASSERT_TRUE(start({}));
    ASSERT_TRUE(waitUntil([this] { return agent->isLinked(); }));
    EXPECT_EQ(askForMessage(), 1);
    EXPECT_TRUE(isTypedIntoTheEditor(XK_a));
}

} // namespace
