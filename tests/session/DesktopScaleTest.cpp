#include "tests/session/support/DesktopSettings.h"
#include "tests/session/support/Service.h"
#include "tests/session/support/Session.h"
#include "tests/session/support/SessionWithMessages.h"
#include "tests/session/support/XResourceFile.h"
#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>
#include <cstdlib>

namespace
{

constexpr char windowScale[] = "Gdk/WindowScalingFactor";

/// A desktop with an agent whose menu is opened and closed again.
class ScaleOfTheDesktop : public DesktopWithAgent
{
protected:
    void startTheAgent()
    {
        ASSERT_TRUE(agent->startAndDock());
        ASSERT_TRUE(waitUntil([&] { return agent->isLinked(); }));
    }
    void startAnotherAgent()
    {
        agent.emplace(desktop);
        startTheAgent();
    }
    QRect openedMenu()
    {
        const std::optional<XWindow> menu = agent->openMenu();
        desktop.input().key(XK_Escape);
        EXPECT_TRUE(agent->waitUntilClosed());
        return menu ? menu->geometry : QRect();
    }
    /// Nobody tells when the agent has heard of a change.
    [[nodiscard]] bool menuBecomes(QSize size)
    {
        return waitUntil([&] { return openedMenu().size() == size; }, std::chrono::seconds(20));
    }
};

class ScaleOfABareDesktop : public ScaleOfTheDesktop
{
protected:
    ScaleOfABareDesktop()
    {
        hasWindowManager = false;
        panelThickness = 0;
    }
    [[nodiscard]] bool itemBecomes(const QRect &place)
    {
        return waitUntil([&] {
            const QList<XWindow> windows = agent->freeWindows();
            return windows.size() == 1 && windows.first().geometry == place && agent->isDrawn(windows.first());
        });
    }
};

class MessagesAtTheDesktopsScale : public SessionWithMessages
{
protected:
    /// What can be seen of it is as large as that, and the same but for the scale.
    [[nodiscard]] bool looksLike(const QImage &usual)
    {
        const QImage present = settledPicture(agent->freeWindows().value(0))
                                   .scaled(usual.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        int different = 0;
        for (int y = 0; y < usual.height(); ++y) {
            for (int x = 0; x < usual.width(); ++x) {
                different += std::abs(qGray(usual.pixel(x, y)) - qGray(present.pixel(x, y))) > 64 ? 1 : 0;
            }
        }
        return different < usual.width() * usual.height() / 50;
    }
};

} // namespace

TEST_F(ScaleOfTheDesktop, IsThatOfTheStart)
{
    startTheAgent();
    const QSize usual = openedMenu().size();
    DesktopSettings settings(desktop.server());
    settings.setNumber(windowScale, 2);
    startAnotherAgent();
    EXPECT_EQ(openedMenu().size(), usual * 2);
    settings.setNumber("Gdk/UnscaledDPI", 96 * 1024);
    settings.setDotsPerInch(192);
    startAnotherAgent();
    EXPECT_EQ(openedMenu().size(), usual * 2) << "the dots have it in them";
}

TEST_F(ScaleOfTheDesktop, IsNotFollowedWhereTheUserHasChosenAnother)
{
    startTheAgent();
    const QSize usual = openedMenu().size();
    for (const auto &[name, value] : {std::pair("QT_SCALE_FACTOR", "1"), {"QT_SCREEN_SCALE_FACTORS", "1;1"}}) {
        DesktopSettings settings(desktop.server());
        settings.setNumber(windowScale, 2);
        agent.emplace(desktop);
        agent->environment.insert(QString::fromLatin1(name), QString::fromLatin1(value));
        startTheAgent();
        EXPECT_EQ(openedMenu().size(), usual) << name;
        settings.setNumber(windowScale, 3);
        EXPECT_EQ(openedMenu().size(), usual) << name;
    }
}

TEST_F(ScaleOfTheDesktop, IsFollowedWhileTheAgentRuns)
{
    DesktopSettings settings(desktop.server());
    startTheAgent();
    const QRect usual = openedMenu();
    settings.setNumber(windowScale, 2);
    EXPECT_TRUE(menuBecomes(usual.size() * 2));
    EXPECT_TRUE(QRect(QPoint(), desktop.view().screenSize()).contains(openedMenu()));
    settings.setDotsPerInch(192);
    EXPECT_TRUE(menuBecomes(usual.size() * 4));
    settings.setNumber(windowScale, 1);
    settings.setDotsPerInch(96);
    EXPECT_TRUE(menuBecomes(usual.size()));
    EXPECT_EQ(openedMenu(), usual);
}

TEST_F(ScaleOfTheDesktop, IsThatOfWhoeverKeepsTheSettings)
{
    startTheAgent();
    const QSize usual = openedMenu().size();
    std::optional<DesktopSettings> first(std::in_place, desktop.server());
    first->setDotsPerInch(192);
    EXPECT_TRUE(menuBecomes(usual * 2)) << "one came";
    DesktopSettings second(desktop.server());
    EXPECT_TRUE(menuBecomes(usual)) << "another took its place";
    second.setDotsPerInch(192);
    EXPECT_TRUE(menuBecomes(usual * 2));
    second.setBytes("nonsense");
    EXPECT_TRUE(menuBecomes(usual));
}

TEST_F(ScaleOfTheDesktop, IsThatOfTheXResourcesWhereNoSettingSaysOne)
{
    XResourceFile resources(desktop.server());
    startTheAgent();
    const QSize usual = openedMenu().size();
    resources.write("Xft.dpi:\t192\n");
    const QRect first = openedMenu();
    EXPECT_EQ(first.size(), usual * 2);
    EXPECT_EQ(first, openedMenu()) << "Qt did not know of the scale in time";
    resources.write("");
    EXPECT_EQ(openedMenu().size(), usual);
    const DesktopSettings settings(desktop.server());
    resources.write("Xft.dpi:\t192\n");
    EXPECT_TRUE(menuBecomes(usual));
}

TEST_F(ScaleOfTheDesktop, IsThatOfTheRoomThatTheItemAsksItsPanelFor)
{
    ASSERT_TRUE(desktop.showOn({{0, 0, 1280, 800}, {1280, 0, 1024, 768}}, 1));
    DesktopSettings settings(desktop.server());
    startTheAgent();
    const auto asksFor = [&](int side) {
        return waitUntil([&] {
            const std::optional<XWindow> item = agent->dockedItem();
            return item && desktop.view().leastSizeOf(item->id) == QSize(side, side);
        });
    };
    EXPECT_TRUE(asksFor(22));
    settings.setNumber(windowScale, 2);
    EXPECT_TRUE(asksFor(44));
    ASSERT_TRUE(desktop.showOn({{0, 0, 1280, 800}}, 0)) << "the main screen goes";
    // The panel starts anew with the screen, and waits ten seconds or so for a window manager then.
    ASSERT_TRUE(waitUntil([&] { return agent->isDocked(); }, std::chrono::seconds(30)));
    settings.setNumber(windowScale, 1);
    EXPECT_TRUE(asksFor(22));
    ASSERT_TRUE(desktop.showOn({{0, 0, 1280, 800}, {1280, 0, 1024, 768}}, 1)) << "another comes";
    ASSERT_TRUE(desktop.showOn({{0, 0, 1024, 768}}, 0));
    ASSERT_TRUE(waitUntil([&] { return agent->isDocked(); }, std::chrono::seconds(30)));
    settings.setNumber(windowScale, 2);
    EXPECT_TRUE(asksFor(44));
}

TEST_F(ScaleOfABareDesktop, IsThatOfTheDistanceToWhichTheUserHasDraggedTheItem)
{
    DesktopSettings settings(desktop.server());
    ASSERT_TRUE(agent->start());
    ASSERT_TRUE(waitUntil([&] { return agent->freeWindows().size() == 1; }, std::chrono::seconds(30)));
    ASSERT_TRUE(waitUntil([&] { return agent->isDrawn(agent->freeWindows().first()); }));
    desktop.input().move(agent->freeWindows().first().geometry.center());
    desktop.input().press();
    desktop.input().move({1280 - 301 - 11, 11});
    desktop.input().release();
    const auto place = [](int side, int distance) { return QRect(1280 - distance - side, 0, side, side); };
    desktop.input().move({600, 400}); // No tool tip is to come up.
    ASSERT_TRUE(waitUntil([&] { return std::abs(agent->freeWindows().value(0).geometry.right() - 978) <= 2; }));
    const QRect dragged = agent->freeWindows().value(0).geometry;
    const int distance = 1280 - dragged.x() - dragged.width();
    settings.setNumber(windowScale, 2);
    EXPECT_TRUE(itemBecomes(place(44, distance * 2)));
    settings.setNumber(windowScale, 1);
    settings.setDotsPerInch(120);
    EXPECT_TRUE(itemBecomes(place(28, qRound(distance * 1.25))));
    settings.setDotsPerInch(96);
    EXPECT_TRUE(itemBecomes(dragged));
}

TEST_F(ScaleOfABareDesktop, IsThatOfTheItemAtOnce)
{
    DesktopSettings settings(desktop.server());
    ASSERT_TRUE(agent->start());
    const auto place = [](int side, int distance) { return QRect(1280 - distance - side, 0, side, side); };
    ASSERT_TRUE(waitUntil([&] { return agent->freeWindows().size() == 1; }, std::chrono::seconds(30)));
    const QRect usual = agent->freeWindows().value(0).geometry;
    const int distance = 1280 - usual.x() - usual.width();
    EXPECT_EQ(usual, place(22, distance));
    settings.setNumber(windowScale, 2);
    EXPECT_TRUE(itemBecomes(place(44, distance * 2)));
    settings.setNumber(windowScale, 1);
    settings.setDotsPerInch(120);
    EXPECT_TRUE(itemBecomes(place(28, distance * 5 / 4)))
        << agent->freeWindows().value(0).geometry.x() << ' ' << agent->freeWindows().value(0).geometry.width();
    settings.setDotsPerInch(96);
    EXPECT_TRUE(itemBecomes(usual));
}

TEST_F(ScaleOfABareDesktop, IsThatOfTheXResourcesAtOnce)
{
    XResourceFile resources(desktop.server());
    ASSERT_TRUE(agent->start());
    ASSERT_TRUE(waitUntil([&] { return agent->freeWindows().size() == 1; }, std::chrono::seconds(30)));
    const QSize usual = agent->freeWindows().value(0).geometry.size();
    resources.write("Xft.dpi:\t192\n");
    EXPECT_TRUE(waitUntil([&] { return agent->freeWindows().value(0).geometry.size() == usual * 2; }));
    resources.write("Xft.dpi:\t96\n");
    EXPECT_TRUE(waitUntil([&] { return agent->freeWindows().value(0).geometry.size() == usual; }));
}

TEST_F(MessagesAtTheDesktopsScale, AreInTheirCornerInItsSize)
{
    DesktopSettings settings(desktop.server());
    ASSERT_TRUE(start({{{.id = "1", .text = "<p>Read <b>this</b></p>"}}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    const QRect usual = window->geometry;
    const QImage picture = settledPicture(*window);
    const auto present = [&] { return agent->freeWindows().value(0).geometry; };
    settings.setNumber(windowScale, 2);
    EXPECT_TRUE(waitUntil([&] { return present().size() == usual.size() * 2; })) << present().width();
    EXPECT_TRUE(waitUntil([&] { return present().right() == 1279 - 20 && present().top() == 60; }))
        << present().x() << ' ' << present().y();
    EXPECT_TRUE(looksLike(picture));
    settings.setNumber(windowScale, 1);
    EXPECT_TRUE(waitUntil([&] { return present() == usual; })) << present().x() << ' ' << present().y();
    EXPECT_TRUE(looksLike(picture));
}

TEST_F(MessagesAtTheDesktopsScale, HaveThatOfXResourcesThatHaveChangedBefore)
{
    XResourceFile resources(desktop.server());
    ASSERT_TRUE(start({}));
    Service service(desktop);
    ASSERT_TRUE(service.attach(*agent));
    resources.write("Xft.dpi:\t192\n");
    service.send("hint First");
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    const auto present = [&] { return agent->freeWindows().value(0).geometry; };
    EXPECT_TRUE(waitUntil([&] { return present().right() == 1279 - 20 && present().top() == 60; }))
        << present().x() << ' ' << present().y();
}

TEST(ScaleOfAMenu, ClosesItWhenItChangesAndIsThatOfTheNext)
{
    Session session;
    ASSERT_TRUE(session.start());
    DesktopSettings settings(session.desktop.server());
    ASSERT_TRUE(session.openSubmenu(Session::Workspace, Session::workspaceEntryCount));
    const QSize usual = session.agent->freeWindows().value(0).geometry.size();
    settings.setNumber(windowScale, 2);
    EXPECT_TRUE(session.agent->waitUntilClosed());
    const std::optional<XWindow> next = session.agent->openMenu();
    ASSERT_TRUE(next);
    EXPECT_EQ(next->geometry.size(), usual * 2);
    ASSERT_TRUE(session.closeEverything());
}

TEST(ScaleOfAPanel, BecomesThatOfTheDesktopWhileItIsUp)
{
    Session session;
    ASSERT_TRUE(session.start());
    DesktopSettings settings(session.desktop.server());
    ASSERT_TRUE(session.choose(Session::About, Session::By::Keys));
    const std::optional<XWindow> panel = session.panel();
    ASSERT_TRUE(panel);
    settings.setNumber(windowScale, 2);
    EXPECT_TRUE(waitUntil([&] {
        const QList<XWindow> windows = session.agent->freeWindows();
        return windows.size() == 1 && windows.first().geometry.size() == panel->geometry.size() * 2 &&
               session.agent->isDrawn(windows.first()) &&
               session.desktop.view().focusOwnerPid() == session.agent->pid();
    }));
    EXPECT_TRUE(
        QRect(QPoint(), session.desktop.view().screenSize()).contains(session.agent->freeWindows().value(0).geometry));
    session.desktop.input().key(XK_Escape);
    EXPECT_TRUE(session.agent->waitUntilClosed());
}
