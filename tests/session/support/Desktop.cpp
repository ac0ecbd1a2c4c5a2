#include "tests/session/support/Desktop.h"

#include "tests/support/WaitUntil.h"

#include <QFile>

#include <gtest/gtest.h>

namespace
{
// Neither has anything to say about the agent, and the panel says a lot.
void silence(ChildProcess &program)
{
    program.process().setProcessChannelMode(QProcess::SeparateChannels);
    program.process().setStandardErrorFile(QProcess::nullDevice());
}
} // namespace

bool Desktop::startServer(Server server)
{
    const auto startWith = [this](const char *option, const char *value) {
        return m_server.start({1280, 800}, {QString::fromLatin1(option), QString::fromLatin1(value)});
    };
    switch (server) {
    case Server::RemoteDesktop:
        return m_server.start();
    case Server::SeveralRates:
        return m_server.startWithSeveralRates();
    case Server::WithoutRandR:
        return startWith("-extension", "RANDR");
    case Server::WithoutXFixes:
        return startWith("-extension", "XFIXES");
    case Server::OfEightBits:
        return startWith("-depth", "8");
    }
    return false;
}

bool Desktop::start(Server server)
{
    if (!startServer(server) || !m_bus.start()) {
        return false;
    }
    m_view = std::make_unique<XView>(m_server);
    m_input = std::make_unique<XInput>(m_server);
    return m_view->isConnected() && m_input->isConnected();
}

void Desktop::stopServer()
{
    m_server.stop();
    m_windowManager.kill();
    m_panel.kill();
}

bool Desktop::startWindowManager()
{
    m_windowManager.environment = environment();
    silence(m_windowManager);
    const bool ready = m_windowManager.start(QStringLiteral("openbox"), {QStringLiteral("--sm-disable")}) &&
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

bool Desktop::startPanel(TraySide side)
{
    m_panel.environment = environment();
    silence(m_panel);
    const bool ready = m_panel.start(QStringLiteral("tint2"), {QStringLiteral("-c"), panelConfiguration(side)}) &&
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

bool Desktop::switchTo(QSize size)
{
    ChildProcess xrandr;
    xrandr.environment = environment();
    const bool switched =
        xrandr.start(QStringLiteral("xrandr"),
                     {QStringLiteral("--size"), QStringLiteral("%1x%2").arg(size.width()).arg(size.height())}) &&
        waitUntil([&] { return !xrandr.isRunning(); }) && xrandr.exitCode() == 0;
    EXPECT_TRUE(switched) << "the screen does not switch its size";
    return switched;
}

QString Desktop::panelConfiguration(TraySide side) const
{
    const QString shared = QStringLiteral(KIV_SOURCE_DIR "/resources/demo/tint2rc");
    if (side == TraySide::Right) {
        return shared;
    }
    QFile from(shared);
    QFile to(m_home.filePath(QStringLiteral("tint2rc")));
    if (!from.open(QIODevice::ReadOnly) || !to.open(QIODevice::WriteOnly)) {
        ADD_FAILURE() << "cannot copy the panel's configuration";
        return shared;
    }
    QByteArray text = from.readAll();
    EXPECT_TRUE(text.contains("\npanel_items = TFSC\n"));
    to.write(text.replace("\npanel_items = TFSC\n", "\npanel_items = SFTC\n"));
    return to.fileName();
}

QProcessEnvironment Desktop::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    m_server.addTo(environment);
    environment.insert(QStringLiteral("HOME"), m_home.path());
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_runtime.path());
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_bus.address());
    return environment;
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
