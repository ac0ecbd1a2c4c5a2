#include "tests/session/soak/Life.h"
#include "tests/session/support/ScriptFile.h"
#include "tests/session/support/SettingsProgram.h"
#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>
#include <algorithm>
#include <array>
#include <csignal>

using namespace std::chrono_literals;

bool Life::openAndCloseTheMenu()
{
    if (openMenu()) {
        const std::size_t way = static_cast<std::size_t>(random(3));
        constexpr std::array ways{"by Escape", "by a click on the item", "by a click beside it"};
        SCOPED_TRACE(ways[way]);
        switch (way) {
        case 0:
            input().key(XK_Escape);
            break;
        case 1:
            // A click that comes as fast as the second of two keeps it open.
            EXPECT_FALSE(waitUntil([this] { return !menuIsOpen(); }, 450ms)) << "the menu closes by itself";
            input().press();
            input().release();
            break;
        default:
            input().click({600, 600});
        }
        closeMenu();
    }
    return true;
}

bool Life::chooseACommand()
{
    const QByteArray code = QByteArray::number(32793 + random(4));
    if (!tellTheAgent("actions 32792 " + code) || !openMenu()) {
        return true;
    }
    const qsizetype before = m_session.service->events().size();
    input().key(XK_Down, Session::Workspace + 1);
    input().key(XK_Right);
    EXPECT_TRUE(waitUntil([this] { return windows(isMenu).size() == 2; })) << "the submenu does not open";
    input().key(XK_Return);
    EXPECT_TRUE(waitUntil([&] { return m_session.service->events().size() == before + 1; })) << "the choice is lost";
    EXPECT_TRUE(m_session.service->events().value(before).startsWith("meoa " + code));
    closeMenu();
    return true;
}

std::optional<XWindow> Life::askForADisconnect()
{
    if (!tellTheAgent("actions 32792") || !openMenu()) {
        return std::nullopt;
    }
    input().key(XK_Down, Session::Disconnect + 1);
    input().key(XK_Return);
    const bool asked = waitUntil([this] {
        return windows(isQuestion).size() == 1 && view().focusOwnerPid() == m_session.agent->pid() &&
               windows(isMenu).isEmpty();
    });
    EXPECT_TRUE(asked) << "nothing is asked";
    return asked ? std::optional(windows(isQuestion).first()) : std::nullopt;
}

bool Life::refuseToDisconnect()
{
    if (askForADisconnect()) {
        input().key(XK_Escape);
        EXPECT_TRUE(waitUntil([this] { return windows(isQuestion).isEmpty(); })) << "the question stays";
    }
    return true;
}

bool Life::takeTheItemAway()
{
    m_session.service->send("flags 4");
    EXPECT_TRUE(waitUntil([this] { return !m_session.agent->dockedItem(); })) << "the item stays";
    m_session.service->send("flags 6");
    isBack();
    return true;
}

bool Life::hint()
{
    constexpr std::array texts{
        "Good morning", "A <b>bold</b> word and <i>others</i>",
        "A text that is long enough for two lines of the pop-up, and then some more of the room"};
    m_session.service->send(QByteArray("hint ") + oneOf(texts));
    EXPECT_TRUE(waitUntil([this] { return popUp().has_value(); })) << "no pop-up comes";
    return true;
}

bool Life::closeThePopUp()
{
    const std::optional<XWindow> window = popUp();
    if (!window) {
        return false;
    }
    EXPECT_TRUE(waitUntil([&] { return isGone(*window) || m_session.agent->isDrawn(*window); }));
    const int half = (window->geometry.width() - 33) / 2;
    const bool later = random(2) == 0;
    const int x = isHint(*window) ? window->geometry.width() / 2 : later ? 11 + half / 2 : 22 + half * 3 / 2;
    input().click(fromBelow(*window, x, 26));
    EXPECT_TRUE(waitUntil([&] { return isGone(*window); })) << "the pop-up stays";
    return true;
}

bool Life::followTheLink()
{
    const std::optional<XWindow> window = popUp();
    if (!window || isHint(*window)) {
        return false;
    }
    EXPECT_TRUE(waitUntil([&] { return isGone(*window) || m_session.agent->isDrawn(*window); }));
    const qsizetype before = m_session.browser.opened().size();
    input().click(window->geometry.topLeft() + QPoint(84, 50));
    const auto isOpened = [&] { return m_session.browser.opened().size() == before + 1; };
    EXPECT_TRUE(waitUntil([&] { return isOpened() || isGone(*window); })) << "nothing is opened";
    if (!isOpened()) {
        return false; // Its time was over before the click.
    }
    letPass(2s);
    EXPECT_TRUE(waitUntil([&] { return isGone(*window); })) << "the pop-up stays";
    return true;
}

bool Life::changeTheSettings()
{
    SettingsProgram::write(m_session.desktop, random(7), random(5), random(5));
    SettingsProgram::announce(m_session.desktop, *m_session.agent);
    return true;
}

bool Life::changeTheScreen()
{
    constexpr std::array sizes{QSize(1280, 800), QSize(1024, 768), QSize(1920, 1200), QSize(1600, 1200)};
    m_screen = oneOf(sizes);
    EXPECT_TRUE(m_session.desktop.switchTo(m_screen));
    return settleOnTheScreen();
}

void Life::setUsualTool()
{
    writeScript(m_tool, "exec '" KIV_SERVICE_TOOL "' \"$@\"");
}

bool Life::chooseFromTheMenu(QSize size)
{
    QList<QSize> sizes = view().modeSizes();
    const auto isWider = [](QSize one, QSize other) { return one.width() > other.width(); };
    std::ranges::sort(sizes, isWider);
    sizes.erase(std::unique(sizes.begin(), sizes.end()), sizes.end());
    // The menu lists them widest first.
    const auto place = std::ranges::find(sizes, size) - sizes.begin();
    EXPECT_EQ(std::ranges::count(sizes, size.width(), &QSize::width), 1);
    // The entry follows the item with the next commands that are allowed.
    if (!tellTheAgent("actions 32792") || !openMenu()) {
        return false;
    }
    input().key(XK_Down, Session::Resolution + 1);
    input().key(XK_Right);
    EXPECT_TRUE(waitUntil([this] { return windows(isMenu).size() == 2; })) << "the submenu does not open";
    input().key(XK_Down, static_cast<int>(place));
    input().key(XK_Return);
    return true;
}

bool Life::chooseASize()
{
    const QSize size(1024, 768);
    if (!chooseFromTheMenu(size)) {
        return true;
    }
    closeMenu();
    EXPECT_TRUE(waitUntil([&] { return view().screenSize() == size; })) << "the screen keeps its size";
    m_screen = size;
    return settleOnTheScreen();
}

bool Life::settleOnTheScreen()
{
    // The panel starts anew with the screen; one that is just starting may miss that, and is started again.
    if (!waitUntil([this] { return m_session.desktop.panelGeometry().width() == m_screen.width(); }, 5s)) {
        m_session.desktop.stopPanel();
        EXPECT_TRUE(m_session.desktop.startPanel(Desktop::TraySide::Left));
    }
    isBack();
    EXPECT_TRUE(waitUntil([this] {
        const std::optional<XWindow> window = popUp();
        return !window || isInItsCorner(*window);
    })) << "the pop-up stays behind";
    return true;
}

bool Life::startASecondCopy()
{
    EXPECT_TRUE(m_secondCopy->start());
    EXPECT_TRUE(waitUntil([this] { return !m_secondCopy->process().isRunning(); })) << "there are two";
    EXPECT_EQ(m_secondCopy->process().exitCode(), 0);
    return true;
}

/// The queue and the last id are all that it has of the session before.
bool Life::logOutAndIn()
{
    if (logOut()) {
        logIn();
    }
    return true;
}

bool Life::logOut()
{
    constexpr std::array ends{SIGTERM, SIGHUP, SIGINT, SIGQUIT};
    ::kill(static_cast<pid_t>(m_session.agent->pid()), oneOf(ends));
    return hasEnded();
}

bool Life::hasEnded()
{
    Agent &agent = *m_session.agent;
    const bool ended = waitUntil([&] { return !agent.process().isRunning(); }, 60s);
    EXPECT_TRUE(ended) << "it outlives the session";
    EXPECT_EQ(agent.process().exitCode(), 0) << agent.standardError().constData();
    return ended;
}

bool Life::logIn()
{
    m_livedBefore = m_lived;
    m_requestsBefore = m_feed.requests().size();
    return m_session.agent->startAndDock() && asksTheFeedAtItsStart() && attachTheService();
}

/// Its days begin there.
bool Life::asksTheFeedAtItsStart()
{
    const bool asks = waitUntil([this] { return requestsSinceTheStart() > 0; });
    EXPECT_TRUE(asks) << "the feed is not asked at the start";
    return asks;
}

bool Life::upgrade()
{
    m_session.agent->setVersion("8.0." + QByteArray::number(++m_version));
    return logOutAndIn();
}
