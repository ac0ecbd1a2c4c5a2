#include "tests/session/soak/Life.h"
#include "tests/session/support/HostileClient.h"
#include "tests/session/support/HungTool.h"
#include "tests/session/support/SessionManager.h"
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

} // namespace

bool Life::logOutByTheSessionManager()
{
    Agent &agent = *m_session.agent;
    if (!logOut()) {
        return true;
    }
    SessionManager manager;
    const QProcessEnvironment withoutIt = agent.environment;
    manager.addTo(agent.environment);
    if (logIn()) {
        EXPECT_TRUE(manager.logOut());
        EXPECT_TRUE(hasEnded());
    }
    agent.environment = withoutIt;
    logIn();
    return true;
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
        EXPECT_EQ(::mkfifo(QFile::encodeName(cache.path()).constData(), 0600), 0);
    } else {
        QFile giant(cache.path());
        constexpr qint64 gigabyte = 1 << 30;
        EXPECT_TRUE(giant.open(QIODevice::WriteOnly) && giant.resize(gigabyte));
    }
    logIn();
    // A large file is kept aside; what is no file stays as it is until somebody takes it away.
    if (!QFileInfo(cache.path()).isFile()) {
        QFile::remove(cache.path());
    }
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

bool Life::takeItsLockAwayAndGiveItBack()
{
    const QByteArray lock = "_KIVMENUA_S0";
    HostileClient thief(m_session.desktop.server());
    thief.takeSelection(lock);
    thief.giveUpSelection(lock);
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

bool Life::logOutWhileTheToolHangs()
{
    const QSize size(1024, 768);
    if (m_screen == size) {
        return false; // No tool is started for the size that there is.
    }
    const HungTool tool(m_tool);
    if (chooseFromTheMenu(size)) {
        EXPECT_TRUE(waitUntil([&] { return tool.hasStarted(); })) << "the tool does not start";
    }
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
