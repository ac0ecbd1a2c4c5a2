#pragma once

#include "tests/session/support/Agent.h"
#include "tests/session/support/Browser.h"
#include "tests/session/support/Desktop.h"
#include "tests/session/support/Service.h"

#include <functional>
#include <optional>

/// A whole session at work: a desktop with window manager and panel, the agent in it, and its service, which allows
/// every command. Chooses entries as a user does.
class Session final
{
public:
    /// How a user gets at an entry.
    enum class By { Mouse, Keys };

    /// The entries of the menu, and of its workspace submenu, by their place.
    enum Entry { Resolution, Workspace, Disconnect, Preferences, Support, About, entryCount };
    enum WorkspaceEntry { Minimize, Maximize, Restore, Reset, Options, workspaceEntryCount };

    /// What is not as usual in a session.
    struct Setting {
        Desktop::Server server = Desktop::Server::RemoteDesktop;
        Agent::Program program = Agent::Program::AsBuilt;
        QProcessEnvironment agentsEnvironment;     ///< Added to what the agent has of the desktop.
        QString feed;                              ///< The address of the agent's message feed.
        std::function<bool()> beforeTheAgent = {}; ///< Done once the desktop is there; false when it cannot be done.
    };

    /// False, with a test failure, when not all of it starts.
    bool start(const Setting &setting);
    bool start() { return start(Setting()); }

    Desktop desktop;
    Browser browser;
    std::optional<Agent> agent; ///< Once started.
    std::optional<Service> service;

    /// The window on top of the agent's, once there are `count` of them, the item in the panel not counted.
    std::optional<XWindow> topWindow(qsizetype count);
    /// The entries of an open menu once it is drawn, on the screen.
    QList<QRect> entriesOf(const XWindow &menu, qsizetype count);

    /// Opens the menu and chooses an entry. False, with a test failure, when that cannot be done.
    bool choose(Entry entry, By by);
    bool choose(WorkspaceEntry entry, By by);
    /// Opens the menu and, from there, the submenu of `entry`, which has `count` entries; returns the submenu.
    std::optional<XWindow> openSubmenu(Entry entry, qsizetype count, By by = By::Mouse);

    /// Waits for the one panel that asks or tells something and has the keyboard.
    std::optional<XWindow> panel();
    /// Clicks the button at that place from the left of `count`.
    bool clickButton(const XWindow &panel, qsizetype number, qsizetype count);

    /// Returns once the agent has taken in all that the service has sent before, and handled all input from before.
    bool settle();
    /// Answers what is asked with Escape and closes all menus.
    bool closeEverything();
};
