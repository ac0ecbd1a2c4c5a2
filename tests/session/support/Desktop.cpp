#include "tests/session/support/Desktop.h"

#include "tests/session/support/Viewer.h"
#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

#include <map>

namespace
{
// Neither has anything to say about the agent, and the panel says a lot.
void silence(ChildProcess &program)
{
    program.process().setProcessChannelMode(QProcess::SeparateChannels);
    program.process().setStandardErrorFile(QProcess::nullDevice());
}
} // namespace

Desktop::Desktop()
    : m_server(m_folder.path())
    , m_bus(m_folder.path())
{
}

bool Desktop::startServer(Server server)
{
    const auto startWith = [this](const char *option, const char *value) {
        return m_server.start({QString::fromLatin1(option), QString::fromLatin1(value)});
    };
    switch (server) {
    case Server::RemoteDesktop:
        return m_server.start();
    case Server::SeveralRates:
        return m_server.startWithSeveralRates();
    case Server::EightBits:
        return m_server.startWithSeveralRates({QStringLiteral("-depth"), QStringLiteral("8")});
    case Server::WithoutRandR:
        return startWith("-extension", "RANDR");
    case Server::WithoutXFixes:
        return startWith("-extension", "XFIXES");
    }
    return false;
}

bool Desktop::start(Server server)
{
    if (!startServer(server) || !makeEnvironment() || !m_bus.start()) {
        return false;
    }
    m_view = std::make_unique<XView>(m_server);
    m_input = std::make_unique<XInput>(m_server);
    return m_view->isConnected() && m_input->isConnected();
}

bool Desktop::makeEnvironment()
{
    ChildProcess maker;
    const bool made = maker.start(QStringLiteral(KIV_PRIVATE_DESKTOP),
                                  {QStringLiteral("environment"), m_folder.path(), m_server.display()}) &&
                      waitUntil([&] { return !maker.isRunning(); }) && maker.exitCode() == 0;
    EXPECT_TRUE(made) << "the desktop has no home";
    m_environment = QProcessEnvironment::systemEnvironment();
    m_environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    for (const QString &line : QString::fromLocal8Bit(maker.output()).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        m_environment.insert(line.section(QLatin1Char('='), 0, 0), line.section(QLatin1Char('='), 1));
    }
    return made;
}

bool Desktop::startPart(ChildProcess &part, const QStringList &arguments)
{
    part.environment = m_environment;
    silence(part);
    return part.start(QStringLiteral(KIV_PRIVATE_DESKTOP), arguments);
}

void Desktop::stopServer()
{
    m_server.stop();
    m_windowManager.kill();
    m_panel.kill();
}

bool Desktop::startWindowManager()
{
    const bool ready = startPart(m_windowManager, {QStringLiteral("window-manager"), m_folder.path()}) &&
                       waitUntil([this] { return m_view->hasWindowManager() && (!hasPanel() || panelIsFramed()); });
    EXPECT_TRUE(ready) << "openbox did not start, or left the panel alone";
    return ready;
}

bool Desktop::stopWindowManager()
{
    m_windowManager.terminate();
    const bool gone = waitUntil([this] { return !m_windowManager.isRunning() && !m_view->hasWindowManager(); });
    EXPECT_TRUE(gone) << "openbox did not end";
    return gone;
}

bool Desktop::startPanel(TraySide side, PanelEdge edge, int gap, int thickness, const QString &monitor)
{
    const QString end = side == TraySide::Left ? QStringLiteral("left") : QStringLiteral("right");
    const std::map<PanelEdge, QString> edges = {{PanelEdge::Top, QStringLiteral("top")},
                                                {PanelEdge::Bottom, QStringLiteral("bottom")},
                                                {PanelEdge::Left, QStringLiteral("left")},
                                                {PanelEdge::Right, QStringLiteral("right")}};
    const bool ready = startPart(m_panel, {QStringLiteral("panel"), m_folder.path(), end, edges.at(edge),
                                           QString::number(gap), QString::number(thickness), monitor}) &&
                       waitUntil([this] { return m_view->selectionOwnerPid("_NET_SYSTEM_TRAY_S0") == m_panel.pid(); },
                                 // It waits ten seconds or so for a window manager before it goes on without.
                                 std::chrono::seconds(30));
    EXPECT_TRUE(ready) << "tint2 did not start";
    return ready;
}

void Desktop::stopPanel()
{
    m_panel.kill();
}

bool Desktop::runXrandr(const QStringList &arguments)
{
    ChildProcess xrandr;
    xrandr.environment = environment();
    return xrandr.start(QStringLiteral("xrandr"), arguments) && waitUntil([&] { return !xrandr.isRunning(); }) &&
           xrandr.exitCode() == 0;
}

bool Desktop::switchTo(QSize size)
{
    const bool switched =
        runXrandr({QStringLiteral("--size"), QStringLiteral("%1x%2").arg(size.width()).arg(size.height())});
    EXPECT_TRUE(switched) << "the screen does not switch its size";
    return switched;
}

bool Desktop::showOn(const QList<QRect> &monitors, int main)
{
    QRect all;
    for (const QRect &monitor : monitors) {
        all |= monitor;
    }
    Viewer viewer;
    if (!viewer.connectTo(m_server.rfbSocket())) {
        return false;
    }
    viewer.ask(monitors);
    // The X server numbers its outputs as they come.
    const bool shown =
        waitUntil([&] { return view().screenSize() == all.size(); }) &&
        runXrandr({QStringLiteral("--output"), QStringLiteral("VNC-%1").arg(main), QStringLiteral("--primary")});
    EXPECT_TRUE(shown) << "there are no such monitors";
    return shown;
}

bool Desktop::panelIsFramed() const
{
    const QList<XWindow> windows = m_view->windowsOf(m_panel.pid());
    return !windows.isEmpty() && m_view->isFramed(windows.first().id);
}

QRect Desktop::panelGeometry() const
{
    const QList<XWindow> windows = m_view->windowsOf(m_panel.pid());
    return windows.isEmpty() ? QRect() : windows.first().geometry;
}
