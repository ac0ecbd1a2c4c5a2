#pragma once

#include "tests/session/support/Desktop.h"
#include "tests/support/ChildProcess.h"

#include <QByteArrayList>
#include <QTemporaryDir>

#include <chrono>
#include <optional>

/// The agent in a desktop of the test's own. It is a copy of the built program with an information dictionary that
/// names no message feed but one of the test's own, so that it asks nothing of any network.
class Agent final
{
public:
    /// Which program it is.
    enum class Program {
        AsBuilt,
        /// The same with another service tool: the one that KIV_TEST_SERVICE_TOOL of its environment names.
        WithToolOfTheTest
    };

    explicit Agent(Desktop &desktop, Program program = Program::AsBuilt);
    /// Ends the agent as the end of a session does. A test failure when it does not go, or with another status than 0:
    /// that is how a sanitizer tells of memory that has leaked.
    ~Agent();
    Agent(const Agent &) = delete;
    Agent &operator=(const Agent &) = delete;

    /// What the agent gets as its environment; the desktop's at first.
    QProcessEnvironment environment;

    /// A program that starts it, with arguments to which the agent's path is added. It starts by itself when empty.
    QStringList starter;

    /// The address of its message feed; none when empty. Counts at the first start.
    QString feed;

    /// The version that its bundle states from the next start on, as after an upgrade. Not before the first start.
    void setVersion(const QByteArray &version);

    bool start();
    /// Starts it and returns once its item lies in the panel. False, with a test failure, when it does not get there.
    bool startAndDock();

    [[nodiscard]] ChildProcess &process() { return m_process; }
    [[nodiscard]] qint64 pid() const { return m_process.pid(); }
    [[nodiscard]] QByteArray standardError() const;
    /// What it has said to the system log so far: lines of the form "priority message".
    [[nodiscard]] QByteArrayList systemLog() const;

    /// The item in the panel's tray; nothing while it is not docked there.
    [[nodiscard]] std::optional<XWindow> dockedItem() const;
    /// The agent's windows outside the panel, bottom first: menus, pop-ups, panels, and the item without a tray.
    [[nodiscard]] QList<XWindow> freeWindows() const;
    /// True once the docked item is drawn and the panel has stopped moving it about.
    [[nodiscard]] bool isDocked() const;
    [[nodiscard]] bool isDrawn(const XWindow &window) const;
    [[nodiscard]] QImage itemPicture() const;

    /// Clicks the middle of the docked item, and returns the menu that opens, once it takes keys.
    std::optional<XWindow> openMenu();
    [[nodiscard]] bool hasMenu() const { return !freeWindows().isEmpty(); }
    /// Waits until no window but the item is left.
    [[nodiscard]] bool waitUntilClosed() const;
    /// Opens the "Manage Workspace" submenu of the open menu with the pointer, and returns it.
    std::optional<XWindow> openWorkspaceMenu(const XWindow &menu);

    /// The processor time that its main thread has used so far.
    [[nodiscard]] std::chrono::nanoseconds processorTime() const;

    /// True while the agent receives events on the desktop's bus.
    [[nodiscard]] bool isLinked() const;

private:
    Desktop &m_desktop;
    const Program m_program;
    QTemporaryDir m_directory;
    ChildProcess m_process;
};
