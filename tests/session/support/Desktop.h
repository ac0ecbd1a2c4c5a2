#pragma once

#include "tests/session/support/XInput.h"
#include "tests/session/support/XView.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/PrivateXServer.h"

#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <memory>

/// A desktop of the test's own: an X server, a message bus, a home folder and a run-time folder, and on top of them the
/// parts that the test asks for. Nothing in it reaches the desktop on which the test itself was started.
class Desktop final
{
public:
    Desktop();

    /// The end of the panel at which its tray lies. At the left end a menu has room to open to the right of its item.
    enum class TraySide { Left, Right };

    /// Where the panel stands, and how many pixels from that edge.
    enum class PanelEdge { Top, Bottom, Left, Right };

    /// What the X server is one of.
    enum class Server {
        RemoteDesktop, ///< Viewers may connect to it.
        SeveralRates,  ///< Without viewers, and with modes of one size that differ in their refresh rate.
        WithoutRandR,  ///< A remote desktop that says nothing about displays.
        EightBits,     ///< Without viewers, and with 256 colours.
        WithoutXFixes  ///< One that does not tell of changes of owner.
    };

    /// Starts the X server and the bus. False, with a test failure, when one does not start.
    bool start(Server server = Server::RemoteDesktop);
    /// Ends the X server, and with it all that has windows there; start() starts another, with the same home.
    void stopServer();
    /// Returns once it has put a frame around a panel that is there: while it does so, the panel is off the screen, and
    /// a click at it falls through.
    bool startWindowManager();
    /// Ends the window manager; returns once the X server has none.
    bool stopWindowManager();
    /// Starts a panel along that edge and returns once it takes status items.
    bool startPanel(TraySide side = TraySide::Right, PanelEdge edge = PanelEdge::Top, int gap = 0, int thickness = 30,
                    const QString &monitor = QStringLiteral("primary"));
    /// Kills the panel, as a crash would.
    void stopPanel();

    /// Has a viewer ask for these monitors, with the upper left corner of all at (0, 0), and makes that of the index
    /// the main one.
    bool showOn(const QList<QRect> &monitors, int main);

    /// Has the screen switched to another size, as another program would.
    bool switchTo(QSize size);

    /// What programs of this desktop get as their environment.
    [[nodiscard]] const QProcessEnvironment &environment() const { return m_environment; }
    [[nodiscard]] const PrivateXServer &server() const { return m_server; }
    [[nodiscard]] PrivateBus &bus() { return m_bus; }
    [[nodiscard]] XView &view() { return *m_view; }
    [[nodiscard]] XInput &input() { return *m_input; }

    [[nodiscard]] bool hasPanel() const { return m_panel.isRunning(); }
    [[nodiscard]] qint64 panelPid() const { return m_panel.pid(); }
    /// The panel's place on the screen, as the X server has it.
    [[nodiscard]] QRect panelGeometry() const;

private:
    bool startServer(Server server);
    bool runXrandr(const QStringList &arguments);
    [[nodiscard]] bool panelIsFramed() const;
    bool makeEnvironment();
    bool startPart(ChildProcess &part, const QStringList &arguments);

    QTemporaryDir m_folder;
    QProcessEnvironment m_environment;
    PrivateXServer m_server;
    PrivateBus m_bus;
    std::unique_ptr<XView> m_view;
    std::unique_ptr<XInput> m_input;
    ChildProcess m_windowManager;
    ChildProcess m_panel;
};
