#include "tests/session/soak/Life.h"
#include "tests/session/support/HostileClient.h"
#include "tests/session/support/RawCommand.h"
#include "tests/support/BusPeer.h"
#include "tests/support/WaitUntil.h"

#include <QFile>

#include <gtest/gtest.h>

#include <X11/keysym.h>

bool Life::destroyTheItem()
{
    if (!isBack()) {
        return true;
    }
    if (const std::optional<XWindow> item = m_session.agent->dockedItem()) {
        HostileClient(m_session.desktop.server()).destroy(static_cast<xcb_window_t>(item->id));
        EXPECT_TRUE(waitUntil([&] {
            const std::optional<XWindow> now = m_session.agent->dockedItem();
            return now && now->id != item->id;
        })) << "the item is lost for good";
        isBack();
    }
    return true;
}

bool Life::destroyThePopUp()
{
    const std::optional<XWindow> window = popUp();
    if (!window) {
        return false;
    }
    HostileClient(m_session.desktop.server()).destroy(static_cast<xcb_window_t>(window->id));
    EXPECT_TRUE(waitUntil([&] { return isGone(*window); })) << "the pop-up is lost for good";
    return true;
}

bool Life::destroyTheQuestion()
{
    if (const std::optional<XWindow> question = askForADisconnect()) {
        HostileClient(m_session.desktop.server()).destroy(static_cast<xcb_window_t>(question->id));
        EXPECT_TRUE(waitUntil([&] { return windows(isQuestion).isEmpty(); }));
    }
    return openAndCloseTheMenu(); // It does not open while something is asked.
}

/// One of them is what an open menu hangs on.
bool Life::destroyWhatNobodySees()
{
    const bool withTheMenu = random(2) == 0;
    if (withTheMenu && !openMenu()) {
        return true;
    }
    HostileClient destroyer(m_session.desktop.server());
    for (const xcb_window_t window : destroyer.hiddenWindowsOf(m_session.agent->pid())) {
        destroyer.destroy(window);
    }
    if (withTheMenu) {
        input().key(XK_Escape);
        closeMenu();
    }
    return openAndCloseTheMenu();
}

/// Of what would take the item away, announcements and questions; no more than the agent handles in a moment.
bool Life::flood()
{
    const qint64 agent = m_session.agent->pid();
    const BusPeer stranger(m_session.desktop.bus());
    const QList<RawParameter> intrusion{RawCommand::command("meso"), RawCommand::sender(agent), RawCommand::flags(0)};
    constexpr int times = 1000;
    for (int i = 0; i < times; ++i) {
        stranger.connection().send(RawCommand::event(agent, intrusion));
        stranger.connection().send(RawCommand::settingsAnnounced());
        stranger.connection().send(RawCommand::questionForTheContract(agent));
        stranger.connection().send(RawCommand::questionForTheMenusContract(agent));
        stranger.connection().send(RawCommand::newsOfAScreenReader());
        stranger.connection().send(RawCommand::newsOfTheColours());
    }
    RawCommand::send(stranger, agent, intrusion);
    EXPECT_TRUE(isBack()) << "the agent obeys a stranger";
    return openAndCloseTheMenu();
}

bool Life::speakInTheNameOfTheDeadService()
{
    const qint64 dead = m_session.service->process().pid();
    m_session.service->process().kill();
    const BusPeer stranger(m_session.desktop.bus());
    for (const char *command : {"meso", "meqi"}) {
        RawCommand::send(stranger, m_session.agent->pid(),
                         {RawCommand::command(command), RawCommand::sender(dead), RawCommand::flags(0)});
    }
    EXPECT_TRUE(isBack()) << "the agent obeys a stranger";
    return attachTheService();
}

/// With more parameters than any has, and of megabytes.
bool Life::sendEventsThatAreTooMuch()
{
    const qint64 agent = m_session.agent->pid();
    const BusPeer stranger(m_session.desktop.bus());
    const QDBusMessage crowded = RawCommand::event(agent, QList<RawParameter>(10'000, RawCommand::flags(0)));
    EXPECT_EQ(stranger.connection().call(crowded, QDBus::Block, 120'000).type(), QDBusMessage::ErrorMessage);
    const RawParameter text{QStringLiteral("mpht"), QStringLiteral("ptxt"), QByteArray(5'000'000, 'x')};
    for (int i = 0; i < 10; ++i) {
        stranger.connection().send(RawCommand::event(agent, {RawCommand::command("medh"), text}));
    }
    return openAndCloseTheMenu();
}

/// A hundred wait at most, and none outlives the agent.
bool Life::sendHintsWithoutBound()
{
    m_session.service->send("hint " + QByteArray("and so on ").repeated(20'000));
    for (int i = 0; i < 150; ++i) {
        m_session.service->send("hint Good morning");
    }
    EXPECT_TRUE(waitUntil([this] { return popUp().has_value(); })) << "no pop-up comes";
    return logOutAndIn();
}

/// It leads to what belongs to somebody else.
bool Life::putALinkInPlaceOfTheMessages()
{
    const QByteArray theirs("somebody's");
    const QString home = m_session.desktop.environment().value(QStringLiteral("HOME"));
    const QString path = home + QLatin1String("/decoy");
    QFile decoy(path);
    EXPECT_TRUE(decoy.open(QIODevice::WriteOnly) && decoy.write(theirs) == theirs.size());
    decoy.close();
    const MessageCache cache = messages();
    QFile::remove(cache.path());
    QFile::link(path, cache.path());
    logOutAndIn();
    EXPECT_TRUE(decoy.open(QIODevice::ReadOnly));
    EXPECT_EQ(decoy.readAll(), theirs) << "written through a link";
    return true;
}
