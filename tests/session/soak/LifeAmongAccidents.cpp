#include "tests/session/soak/Life.h"
#include "tests/session/support/HostileClient.h"
#include "tests/session/support/HungTool.h"
#include "tests/session/support/SessionManager.h"
#include "tests/session/support/SettingsProgram.h"
#include "tests/support/BusForOne.h"
#include "tests/support/BusPeer.h"
#include "tests/support/WaitUntil.h"

#include <QDBusReply>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace
{

/// How many others wait for a name that this one has.
qsizetype othersInLine(const BusPeer &owner, const QString &name)
{
    QDBusMessage question =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ListQueuedOwners"));
    question << name;
    QStringList line = QDBusReply<QStringList>(owner.connection().call(question)).value();
    line.removeAll(owner.name());
    return line.size();
}

void makePipe(const QString &path)
{
    EXPECT_EQ(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
}

void makeGiant(const QString &path)
{
    QFile giant(path);
    constexpr qint64 gigabyte = 1 << 30;
    EXPECT_TRUE(giant.open(QIODevice::WriteOnly) && giant.resize(gigabyte));
}

constexpr QSize sizeForTheTool{1024, 768};

} // namespace

bool Life::logOutByTheSessionManagerAfter(const std::function<void()> &whatHappens)
{
    Agent &agent = *m_session.agent;
    if (!logOut()) {
        return true;
    }
    SessionManager manager;
    const QProcessEnvironment withoutIt = agent.environment;
    manager.addTo(agent.environment);
    if (logIn()) {
        whatHappens();
        EXPECT_TRUE(manager.logOut());
        EXPECT_TRUE(hasEnded());
    }
    agent.environment = withoutIt;
    return logIn();
}

bool Life::logOutByTheSessionManager()
{
    return logOutByTheSessionManagerAfter([] {});
}

bool Life::logOutByTheSessionManagerWithAPopUp()
{
    return logOutByTheSessionManagerAfter([this] {
        m_session.service->send("hint Good evening");
        std::optional<XWindow> window;
        const auto isThere = [&] {
            window = popUp();
            return window.has_value();
        };
        // It waits for a message that is on the screen.
        while (waitUntil(isThere) && !isHint(*window) && !testing::Test::HasFailure()) {
            closeThePopUp();
        }
        EXPECT_TRUE(window && waitUntil([&] { return m_session.agent->isDrawn(*window); })) << "the hint is not shown";
    });
}

bool Life::logOutByTheSessionManagerWhileTheToolHangs()
{
    if (m_screen == sizeForTheTool) {
        return false; // No tool is started for the size that there is.
    }
    const HungTool tool(m_tool);
    const bool isIn = logOutByTheSessionManagerAfter([&] { chooseWhileTheToolHangs(tool); });
    setUsualTool();
    return isIn;
}

/// Neither can be read: one is too large, and from the other nothing ever comes.
bool Life::putSomethingElseInPlaceOfTheMessages()
{
    if (!logOut()) {
        return true;
    }
    const MessageCache cache = messages();
    EXPECT_TRUE(QDir().mkpath(cache.folder()));
    QFile::remove(cache.path());
    if (random(2) == 0) {
        makePipe(cache.path());
    } else {
        makeGiant(cache.path());
    }
    logIn();
    // A large file is kept aside; what is no file stays as it is until somebody takes it away.
    if (!QFileInfo(cache.path()).isFile()) {
        QFile::remove(cache.path());
    }
    return true;
}

/// For a day: nothing waits for it, and nothing is written to what a link leads to. Then the user's own are back.
bool Life::putSomethingElseInPlaceOfTheSettings()
{
    const QString path = SettingsProgram::file(m_session.desktop);
    const QString aside = path + QLatin1String(".aside");
    QFile decoy(path + QLatin1String(".decoy"));
    QFile::remove(decoy.fileName());
    EXPECT_TRUE(QFile::rename(path, aside) && QFile::copy(aside, decoy.fileName()));
    EXPECT_TRUE(decoy.open(QIODevice::ReadOnly));
    const QByteArray before = decoy.readAll();
    switch (random(3)) {
    case 0:
        EXPECT_TRUE(decoy.link(path));
        break;
    case 1:
        makePipe(path);
        break;
    default:
        makeGiant(path);
    }
    SettingsProgram::announce(m_session.desktop, *m_session.agent);
    for (int half = 0; half < 2; ++half) {
        leap(12h);
        openAndCloseTheMenu();
    }
    EXPECT_TRUE(decoy.seek(0));
    EXPECT_EQ(decoy.readAll(), before) << "written through a link";
    EXPECT_TRUE(QFile::remove(path) && QFile::rename(aside, path));
    SettingsProgram::announce(m_session.desktop, *m_session.agent);
    return true;
}

/// Another program has its name when it comes back to the bus.
bool Life::takeItsName()
{
    Desktop &desktop = m_session.desktop;
    desktop.bus().stop();
    EXPECT_TRUE(desktop.bus().start());
    const QString name = QStringLiteral("com.tamborel.kivune.p%1").arg(m_session.agent->pid());
    std::optional<BusPeer> squatter(std::in_place, desktop.bus());
    EXPECT_TRUE(squatter->connection().registerService(name));
    EXPECT_TRUE(waitUntil([&] {
        letPass(1s); // It tries again every five seconds.
        return othersInLine(*squatter, name) == 1;
    })) << "it does not wait for its name";
    openAndCloseTheMenu();
    squatter.reset();
    EXPECT_TRUE(waitUntil([this] { return m_session.agent->isLinked(); })) << "the link does not come back";
    attachTheService();
    return true;
}

/// It gives the lock back, or dies.
bool Life::takeItsLockAwayAndLetItGo()
{
    const QByteArray lock = "_KIVMENUA_S0";
    {
        HostileClient thief(m_session.desktop.server());
        thief.takeSelection(lock);
        if (random(2) == 0) {
            thief.giveUpSelection(lock);
        }
    }
    EXPECT_TRUE(waitUntil([&] { return view().selectionOwnerPid(lock) == m_session.agent->pid(); }))
        << "the display is anybody's";
    return startASecondCopy();
}

bool Life::stallTheBus()
{
    m_session.desktop.bus().suspend();
    openAndCloseTheMenu();
    m_session.desktop.bus().resume();
    return tellTheAgent("actions 32792");
}

/// Another program has the one place that there is.
bool Life::fillTheBus()
{
    PrivateBus &bus = m_session.desktop.bus();
    bus.stop();
    bool isFull = false;
    {
        const BusForOne crowded(bus.address());
        EXPECT_TRUE(crowded.isRunning());
        const BusPeer occupant(bus);
        isFull = occupant.connection().isConnected(); // Else the agent was there first.
        letPass(5s);                                  // It tries again.
        openAndCloseTheMenu();
    }
    return comeBackToTheBus() && isFull;
}

void Life::chooseWhileTheToolHangs(const HungTool &tool)
{
    if (chooseFromTheMenu(sizeForTheTool)) {
        EXPECT_TRUE(waitUntil([&] { return tool.hasStarted(); })) << "the tool does not start";
    }
}

bool Life::logOutWhileTheToolHangs()
{
    if (m_screen == sizeForTheTool) {
        return false; // No tool is started for the size that there is.
    }
    const HungTool tool(m_tool);
    chooseWhileTheToolHangs(tool);
    const bool hasEnded = logOut();
    setUsualTool();
    return !hasEnded || logIn();
}

bool Life::killThePanelForOneThatTakesNothingIn()
{
    HostileClient panel(m_session.desktop.server());
    m_session.desktop.stopPanel();
    panel.takeSelection("_NET_SYSTEM_TRAY_S0");
    EXPECT_TRUE(waitUntil(
        [this] {
            letPass(1s);
            return strip().has_value();
        },
        30s))
        << "there is no item";
    panel.giveUpSelection("_NET_SYSTEM_TRAY_S0");
    EXPECT_TRUE(m_session.desktop.startPanel(Desktop::TraySide::Left));
    isBack();
    EXPECT_TRUE(waitUntil([this] { return !strip(); })) << "the item shows twice";
    return true;
}

/// To the agent alone, for a day and to the end of the session.
bool Life::fillTheDisk()
{
    const rlimit noRoom{0, RLIM_INFINITY};
    EXPECT_EQ(::prlimit(static_cast<pid_t>(m_session.agent->pid()), RLIMIT_FSIZE, &noRoom, nullptr), 0);
    letPass(24h);
    openAndCloseTheMenu();
    if (logOut()) {
        const MessageCache cache = messages();
        const QByteArray kept = cache.content();
        // What others have put there may still be there: nothing can take its place.
        EXPECT_TRUE(!kept.startsWith("<?xml") || kept.endsWith("</plist>\n")) << "the messages are cut off";
        logIn();
    }
    return true;
}

bool Life::giveItsFolderToSomebodyElse()
{
    if (!logOut()) {
        return true;
    }
    const MessageCache cache = messages();
    const QByteArray folder = QFile::encodeName(cache.folder());
    EXPECT_TRUE(QDir().mkpath(cache.folder()));
    const QByteArray before = cache.content();
    constexpr uid_t somebodyElse = 65534;
    EXPECT_EQ(::chown(folder.constData(), somebodyElse, static_cast<gid_t>(-1)), 0);
    if (logIn()) {
        letPass(24h);
        openAndCloseTheMenu();
        EXPECT_TRUE(logOut());
    }
    EXPECT_EQ(cache.content(), before) << "written into a folder of somebody else's";
    EXPECT_EQ(::chown(folder.constData(), ::geteuid(), static_cast<gid_t>(-1)), 0);
    logIn();
    return true;
}

/// Closed, or with nobody left who reads it, until the user logs in the next time.
bool Life::loseTheStandardError()
{
    if (!logOut()) {
        return true;
    }
    const QString unread = m_folder.filePath(QStringLiteral("unread"));
    EXPECT_TRUE(QFile::exists(unread) || ::mkfifo(QFile::encodeName(unread).constData(), 0600) == 0);
    const QString redirection =
        random(2) == 0 ? QStringLiteral("2>&-") : QStringLiteral("3<>'%1' 2>'%1' 3<&-").arg(unread);
    QStringList &starter = m_session.agent->starter;
    starter =
        QStringList{QStringLiteral("/bin/sh"), QStringLiteral("-c"), QStringLiteral("exec \"$0\" ") + redirection};
    logIn();
    starter.clear();
    return true;
}
