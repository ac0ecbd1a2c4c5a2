#include "tests/session/support/Agent.h"

#include "tests/support/WaitUntil.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>

namespace
{

/// A copy of the built program and its resources, as another bundle.
bool makeBundle(const QString &program, const QString &feed, const QString &folder)
{
    ChildProcess maker;
    return maker.start(QStringLiteral(KIV_PRIVATE_DESKTOP),
                       {QStringLiteral("bundle"), folder, QStringLiteral(KIV_BUILD_DIR), program,
                        QStringLiteral("KIVBuildVersion=7.8.9"), QStringLiteral("KIVBuildDate=2020-01-02"),
                        QStringLiteral("KIVProductHome=http://127.0.0.1/home"),
                        QStringLiteral("KIVPrivateLabel=Test & trial"),
                        QStringLiteral("KIVSupportMessages=") + feed}) &&
           waitUntil([&] { return !maker.isRunning(); }) && maker.exitCode() == 0;
}

} // namespace

Agent::Agent(Desktop &desktop, Program program)
    : environment(desktop.environment())
    , m_desktop(desktop)
    , m_program(program)
{
}

Agent::~Agent()
{
    if (!m_process.isRunning()) {
        return;
    }
    m_process.terminate();
    // A sanitizer looks through all of the memory first.
    EXPECT_TRUE(waitUntil([this] { return !m_process.isRunning(); }, std::chrono::seconds(60))) << "it does not end";
    // The signal itself ends one that still waits for a panel.
    const bool isKilled = m_process.process().exitStatus() == QProcess::CrashExit;
    EXPECT_EQ(m_process.process().exitCode(), isKilled ? SIGTERM : EXIT_SUCCESS) << standardError().constData();
}

bool Agent::start()
{
    const QDir directory(m_directory.path());
    const QString program =
        m_program == Program::AsBuilt ? QStringLiteral("bin/kivmenua") : QStringLiteral("tests/kivmenua");
    if (!directory.exists(QStringLiteral("bin")) && !makeBundle(program, feed, directory.path())) {
        ADD_FAILURE() << "cannot copy the built agent";
        return false;
    }
    m_process.environment = environment;
    const QString preload = QStringLiteral("LD_PRELOAD");
    m_process.environment.insert(preload, QStringLiteral(KIV_SYSLOG_RECORDER ":") + environment.value(preload));
    m_process.environment.insert(QStringLiteral("KIV_SYSLOG_FILE"), directory.filePath(QStringLiteral("syslog")));
    // A sanitizer's run time wants to be the first library of all; the recorder before it is harmless.
    const QString sanitizer = environment.value(QStringLiteral("ASAN_OPTIONS"));
    m_process.environment.insert(QStringLiteral("ASAN_OPTIONS"),
                                 sanitizer + QStringLiteral(":verify_asan_link_order=0"));
    m_process.process().setProcessChannelMode(QProcess::SeparateChannels);
    m_process.process().setStandardErrorFile(directory.filePath(QStringLiteral("stderr")), QIODevice::Append);
    const QStringList command = starter + QStringList{directory.filePath(QStringLiteral("bin/kivmenua"))};
    const bool started = m_process.start(command.first(), command.mid(1));
    EXPECT_TRUE(started) << "the agent did not start";
    return started;
}

void Agent::setVersion(const QByteArray &version)
{
    QFile file(m_directory.filePath(QStringLiteral("share/kivmenua/Info.plist")));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const QByteArray before = file.readAll();
    const qsizetype begin = before.indexOf("<string>", before.indexOf("<key>KIVBuildVersion</key>")) + 8;
    const QByteArray after = before.left(begin) + version + before.mid(before.indexOf("</string>", begin));
    ASSERT_TRUE(file.resize(0) && file.seek(0) && file.write(after) == after.size());
}

bool Agent::startAndDock()
{
    const bool docked = start() && waitUntil([this] { return isDocked(); });
    EXPECT_TRUE(docked) << "the agent did not dock: " << standardError().constData();
    return docked;
}

QByteArray Agent::standardError() const
{
    QFile file(m_directory.filePath(QStringLiteral("stderr")));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArrayList Agent::systemLog() const
{
    QFile file(m_directory.filePath(QStringLiteral("syslog")));
    QByteArrayList lines = file.open(QIODevice::ReadOnly) ? file.readAll().split('\n') : QByteArrayList();
    lines.removeAll(QByteArray());
    return lines;
}

std::optional<XWindow> Agent::dockedItem() const
{
    if (m_desktop.hasPanel()) {
        for (const XWindow &window : m_desktop.view().windowsOf(pid())) {
            if (window.parentPid == m_desktop.panelPid()) {
                return window;
            }
        }
    }
    return std::nullopt;
}

QList<XWindow> Agent::freeWindows() const
{
    QList<XWindow> windows = m_desktop.view().windowsOf(pid());
    windows.removeIf(
        [this](const XWindow &window) { return m_desktop.hasPanel() && window.parentPid == m_desktop.panelPid(); });
    return windows;
}

bool Agent::isDocked() const
{
    const std::optional<XWindow> item = dockedItem();
    return item && m_desktop.panelGeometry().contains(item->geometry) && isDrawn(*item);
}

bool Agent::isDrawn(const XWindow &window) const
{
    // What is not drawn yet is one flat colour.
    const QImage picture = m_desktop.view().grab(window.geometry);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixel(x, y) != picture.pixel(0, 0)) {
                return true;
            }
        }
    }
    return false;
}

QImage Agent::itemPicture() const
{
    const std::optional<XWindow> item = dockedItem();
    return item ? m_desktop.view().grab(item->geometry) : QImage();
}

std::optional<XWindow> Agent::openMenu()
{
    const std::optional<XWindow> item = dockedItem();
    if (!item) {
        ADD_FAILURE() << "there is no item to click";
        return std::nullopt;
    }
    m_desktop.input().click(item->geometry.center());
    // Drawn last of all: only then the keyboard is its own.
    const bool opened = waitUntil([this] { return hasMenu() && isDrawn(freeWindows().last()); });
    EXPECT_TRUE(opened) << "no menu opened";
    return opened ? std::optional(freeWindows().last()) : std::nullopt;
}

bool Agent::waitUntilClosed() const
{
    return waitUntil([this] { return !hasMenu(); });
}

std::optional<XWindow> Agent::openWorkspaceMenu(const XWindow &menu)
{
    // It is the lower of the two submenus: go down until one is open that does not start with the menu itself.
    const auto lowerSubmenu = [&]() -> std::optional<XWindow> {
        const QList<XWindow> windows = freeWindows();
        const bool found = windows.size() == 2 && windows.last().geometry.top() > menu.geometry.top() + 10;
        return found ? std::optional(windows.last()) : std::nullopt;
    };
    for (int y = menu.geometry.top() + 5; y < menu.geometry.bottom(); y += 5) {
        m_desktop.input().move({menu.geometry.center().x(), y});
        if (waitUntil([&] { return lowerSubmenu().has_value(); }, std::chrono::milliseconds(400))) {
            return lowerSubmenu();
        }
    }
    ADD_FAILURE() << "the submenu did not open";
    return std::nullopt;
}

std::chrono::nanoseconds Agent::processorTime() const
{
    // Its first number, in nanoseconds.
    QFile file(QStringLiteral("/proc/%1/task/%1/schedstat").arg(pid()));
    const bool opened = file.open(QIODevice::ReadOnly);
    EXPECT_TRUE(opened) << "the kernel does not tell";
    return std::chrono::nanoseconds(opened ? file.readAll().split(' ').first().toLongLong() : 0);
}

bool Agent::isLinked() const
{
    static int count = 0;
    const QString name = QStringLiteral("look%1").arg(++count);
    const QString address = environment.value(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
    bool linked = false;
    {
        const QDBusConnection bus = QDBusConnection::connectToBus(address, name);
        linked = bus.isConnected() &&
                 bus.interface()->isServiceRegistered(QStringLiteral("com.tamborel.kivune.p%1").arg(pid()));
    }
    QDBusConnection::disconnectFromBus(name);
    return linked;
}
