#pragma once

#include "tests/session/support/AgentClock.h"
#include "tests/session/support/MessageCache.h"
#include "tests/session/support/Session.h"
#include "tests/support/FeedServer.h"
#include "tests/support/ProcessMemory.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <span>
#include <string>

class HungTool;

/// A session that lives through days, in which whatever happens is drawn by lot. Each operation waits for what it must
/// lead to.
class Life final
{
public:
    /// Lives that many days in that time, and those that operations take.
    Life(unsigned seed, double days, std::chrono::duration<double> length);

    bool start();
    /// Whether an operation may end the agent.
    enum class Agents { ComeAndGo, LiveOn };
    /// Carries one operation out, and perhaps another on the pop-up that is shown then. False, with a test failure,
    /// when one does not lead to what it must.
    bool carryOutOne(Agents agents);
    /// Lets the agent's clock catch up with its pace.
    void letTimePass();

    [[nodiscard]] std::chrono::seconds lived() const { return m_lived; }
    [[nodiscard]] qint64 memory() const { return ProcessMemory::privateKilobytes(m_session.agent->pid()); }
    /// How often each operation led to what it must.
    [[nodiscard]] const std::map<std::string, int> &counts() const { return m_counts; }
    [[nodiscard]] Agent &agent() { return *m_session.agent; }
    /// Those lines of the agent's that are not what it must say of what happened to it.
    [[nodiscard]] static QByteArrayList unexpected(QByteArrayList said);

private:
    /// An operation: false when there is nothing to do it to just now.
    using Carry = bool (Life::*)();
    struct Operation {
        const char *name;
        int weight;
        Carry carryOut;
        bool endsTheAgent = false;
    };
    static const Operation operations[];
    static const Operation operationsOnAPopUp[];

    // What its user and the service do.
    bool openAndCloseTheMenu();
    bool chooseACommand();
    bool refuseToDisconnect();
    bool takeTheItemAway();
    bool hint();
    bool closeThePopUp();
    bool followTheLink();
    bool changeTheSettings();
    bool changeTheScreen();
    bool chooseASize();
    bool startASecondCopy();
    bool logOutAndIn();
    bool upgrade();

    // What it depends on dies.
    bool killThePanel();
    bool killTheWindowManager();
    bool killTheBus();
    bool killTheService();

    // What others do to it.
    bool destroyTheItem();
    bool destroyThePopUp();
    bool flood();
    bool sendHintsWithoutBound();
    bool putALinkInPlaceOfTheMessages();
    bool destroyTheQuestion();
    bool destroyWhatNobodySees();
    bool speakInTheNameOfTheDeadService();
    bool sendEventsThatAreTooMuch();

    // What seldom happens, but does.
    bool logOutByTheSessionManager();
    bool logOutByTheSessionManagerWithAPopUp();
    bool logOutByTheSessionManagerWhileTheToolHangs();
    bool putSomethingElseInPlaceOfTheMessages();
    bool putSomethingElseInPlaceOfTheSettings();
    bool takeItsName();
    bool takeItsLockAwayAndLetItGo();
    bool stallTheBus();
    bool killThePanelForOneThatTakesNothingIn();
    bool fillTheBus();
    bool logOutWhileTheToolHangs();
    bool fillTheDisk();
    bool giveItsFolderToSomebodyElse();
    bool loseTheStandardError();

    bool attachTheService();
    /// Starts the bus anew, and waits for the agent there.
    bool comeBackToTheBus();
    const Operation &draw(std::span<const Operation> from, Agents agents);
    void carryOut(const Operation &operation);
    int random(int below) { return std::uniform_int_distribution(0, below - 1)(m_random); }
    template <typename Container>
    const auto &oneOf(const Container &container)
    {
        return container[static_cast<std::size_t>(random(static_cast<int>(std::size(container))))];
    }

    [[nodiscard]] static bool isPopUp(const XWindow &window)
    {
        // The widths of messages of the feed and of hints, which no menu has.
        return window.overrideRedirect && (window.geometry.width() == 403 || window.geometry.width() == 453);
    }
    [[nodiscard]] static bool isHint(const XWindow &popUp) { return popUp.geometry.width() == 453; }
    /// Neither is the item without a tray, nor a tool tip.
    [[nodiscard]] static bool isMenu(const XWindow &window)
    {
        return window.overrideRedirect && window.geometry.height() > 60 && !isPopUp(window);
    }
    [[nodiscard]] static bool isQuestion(const XWindow &window) { return !window.overrideRedirect; }
    [[nodiscard]] QList<XWindow> windows(bool (*kind)(const XWindow &)) const;
    [[nodiscard]] std::optional<XWindow> popUp() const;
    [[nodiscard]] QPoint fromBelow(const XWindow &window, int x, int y) const
    {
        return {window.geometry.left() + x, window.geometry.bottom() + 1 - y};
    }
    [[nodiscard]] bool isInItsCorner(const XWindow &popUp) const;
    [[nodiscard]] bool isGone(const XWindow &popUp) const;
    [[nodiscard]] bool isDocked() const
    {
        return m_session.agent->isDocked() && m_session.agent->itemPicture() == m_on;
    }
    bool openMenu();
    /// Of the submenu of sizes. False when there is none to choose from now.
    bool chooseFromTheMenu(QSize size);
    /// Chooses a size, and returns once the tool has started.
    void chooseWhileTheToolHangs(const HungTool &tool);
    void setUsualTool();
    [[nodiscard]] bool menuIsOpen() const;
    bool isBack();
    /// The item by itself, once it is drawn.
    [[nodiscard]] std::optional<XWindow> strip() const;
    /// Returns the panel that asks; nothing, with a test failure, when none does.
    std::optional<XWindow> askForADisconnect();
    bool settleOnTheScreen();
    bool logOut();
    /// With a session manager, once that has happened.
    bool logOutByTheSessionManagerAfter(const std::function<void()> &whatHappens);
    bool hasEnded();
    /// Returns once the feed has been asked, too.
    bool logIn();
    bool asksTheFeedAtItsStart();
    /// Always before the next request.
    bool hasGivenUpWhatDoesNotEnd();
    [[nodiscard]] qsizetype requestsSinceTheStart() { return m_feed.requests().size() - m_requestsBefore; }
    [[nodiscard]] MessageCache messages() const
    {
        return MessageCache(m_session.desktop.environment().value(QStringLiteral("HOME")));
    }
    void letPass(std::chrono::seconds time);
    /// No more than its timers can do with: one fires once in a leap. Returns once it has done what was due.
    void leap(std::chrono::seconds time);
    bool closeMenu();
    bool tellTheAgent(const QByteArray &line);

    Session &session() { return m_session; }
    XInput &input() { return m_session.desktop.input(); }
    XView &view() { return m_session.desktop.view(); }

    /// How fast the agent lives.
    const double m_pace;
    const int m_lastMessageId;
    const unsigned m_seed;
    int m_version = 0;     ///< Of the program, by which it has been replaced so often.
    unsigned m_number = 0; ///< Of the operation.
    std::mt19937 m_random;
    FeedServer m_feed;
    std::set<int> m_unending; ///< The requests whose answers do not end.
    AgentClock m_clock;
    QTemporaryDir m_folder;
    const QString m_tool = m_folder.filePath(QStringLiteral("tool")); ///< That switches the resolution.
    Session m_session;
    std::optional<Agent> m_secondCopy;
    QImage m_on; ///< The item while the service has switched the agent on.
    QSize m_screen{1280, 800};
    QElapsedTimer m_time; ///< Since it last caught up.
    std::chrono::seconds m_lived{0};
    std::chrono::seconds m_livedBefore{0}; ///< Before the agent's last start, as the next.
    qsizetype m_requestsBefore = 0;        ///< Of the feed.
    std::map<std::string, int> m_counts;
    std::deque<std::string> m_last; ///< The last operations, this one included.
};
