#include "tests/session/support/Session.h"

#include "tests/session/support/MenuPicture.h"
#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>

namespace
{
QList<QRect> moved(QList<QRect> places, QPoint by)
{
    for (QRect &place : places) {
        place.translate(by);
    }
    return places;
}
} // namespace

bool Session::start(const Setting &setting)
{
    if (!desktop.start(setting.server) || !desktop.startWindowManager() ||
        !desktop.startPanel(Desktop::TraySide::Left)) {
        return false;
    }
    if (setting.beforeTheAgent && !setting.beforeTheAgent()) {
        return false;
    }
    agent.emplace(desktop, setting.program);
    agent->environment.insert(setting.agentsEnvironment);
    agent->feed = setting.feed;
    browser.addTo(agent->environment);
    service.emplace(desktop);
    return agent->startAndDock() && service->attach(*agent) &&
           service->allow(*agent, "32791 32792 32793 32794 32795 32796");
}

std::optional<XWindow> Session::topWindow(qsizetype count)
{
    QList<XWindow> windows;
    const bool there = waitUntil([&] {
        windows = agent->freeWindows();
        return windows.size() == count;
    });
    EXPECT_TRUE(there) << "there are " << windows.size() << " windows and not " << count;
    return there ? std::optional(windows.last()) : std::nullopt;
}

QList<QRect> Session::entriesOf(const XWindow &menu, qsizetype count)
{
    QList<QRect> entries;
    const bool drawn = waitUntil([&] {
        entries = MenuPicture::entries(desktop.view().grab(menu.geometry));
        return entries.size() == count;
    });
    EXPECT_TRUE(drawn) << "the menu has " << entries.size() << " entries and not " << count;
    return moved(drawn ? entries : QList<QRect>(count), menu.geometry.topLeft());
}

bool Session::choose(Entry entry, By by)
{
    const std::optional<XWindow> menu = agent->openMenu();
    if (!menu) {
        return false;
    }
    if (by == By::Mouse) {
        desktop.input().click(entriesOf(*menu, entryCount).at(entry).center());
    } else {
        desktop.input().key(XK_Down, entry + 1);
        desktop.input().key(XK_Return);
    }
    return true;
}

bool Session::choose(WorkspaceEntry entry, By by)
{
    const std::optional<XWindow> submenu = openSubmenu(Workspace, workspaceEntryCount, by);
    if (!submenu) {
        return false;
    }
    if (by == By::Mouse) {
        desktop.input().click(entriesOf(*submenu, workspaceEntryCount).at(entry).center());
    } else {
        desktop.input().key(XK_Down, entry);
        desktop.input().key(XK_Return);
    }
    return agent->waitUntilClosed();
}

std::optional<XWindow> Session::openSubmenu(Entry entry, qsizetype count, By by)
{
    const std::optional<XWindow> menu = agent->openMenu();
    if (!menu) {
        return std::nullopt;
    }
    if (by == By::Mouse) {
        desktop.input().click(entriesOf(*menu, entryCount).at(entry).center());
    } else {
        desktop.input().key(XK_Down, entry + 1);
        desktop.input().key(XK_Right);
    }
    const std::optional<XWindow> submenu = topWindow(2);
    return submenu && !entriesOf(*submenu, count).isEmpty() ? submenu : std::nullopt;
}

std::optional<XWindow> Session::panel()
{
    const auto isUp = [this] {
        const QList<XWindow> windows = agent->freeWindows();
        return windows.size() == 1 && !windows.first().overrideRedirect &&
               desktop.view().focusOwnerPid() == agent->pid() &&
               !MenuPicture::buttons(desktop.view().grab(windows.first().geometry)).isEmpty();
    };
    const bool up = waitUntil(isUp);
    EXPECT_TRUE(up) << "no panel is up and has the keyboard";
    return up ? std::optional(agent->freeWindows().first()) : std::nullopt;
}

bool Session::clickButton(const XWindow &panel, qsizetype number, qsizetype count)
{
    QList<QRect> buttons;
    const bool drawn = waitUntil([&] {
        buttons = MenuPicture::buttons(desktop.view().grab(panel.geometry));
        return buttons.size() == count;
    });
    EXPECT_TRUE(drawn) << "the panel has " << buttons.size() << " buttons and not " << count;
    if (drawn) {
        desktop.input().click(buttons.at(number).translated(panel.geometry.topLeft()).center());
    }
    return drawn;
}

bool Session::settle()
{
    const QImage on = agent->itemPicture();
    service->send("flags 2");
    const bool off = waitUntil([&] { return agent->itemPicture() != on; });
    service->send("flags 6");
    const bool settled = off && waitUntil([&] { return agent->itemPicture() == on; });
    EXPECT_TRUE(settled) << "the agent does not follow the service";
    return settled;
}

bool Session::closeEverything()
{
    return waitUntil([this] {
        if (!agent->hasMenu()) {
            return true;
        }
        desktop.input().key(XK_Escape);
        return false;
    });
}
