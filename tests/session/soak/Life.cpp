#include "tests/session/soak/Life.h"

#include "tests/session/support/FeedMessages.h"
#include "tests/session/support/SettingsProgram.h"
#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <iterator>
#include <numeric>
#include <utility>

namespace
{
constexpr int messagesOfAFlood = 1100;
constexpr std::array messageTypes{"update", "news", "notice", "warning"};
constexpr std::array messagePriorities{"low", "medium", "high"};
constexpr bool endsTheAgent = true;
} // namespace

using namespace std::chrono_literals;

const Life::Operation Life::operations[] = {
    {"menu opened and closed", 10, &Life::openAndCloseTheMenu},
    {"command allowed and chosen", 6, &Life::chooseACommand},
    {"question asked and refused", 3, &Life::refuseToDisconnect},
    {"item removed and shown", 3, &Life::takeTheItemAway},
    {"hint sent", 6, &Life::hint},
    {"settings changed", 4, &Life::changeTheSettings},
    {"screen resized", 3, &Life::changeTheScreen},
    {"size chosen", 2, &Life::chooseASize},
    {"panel killed and started", 2, &Life::killThePanel},
    {"window manager ended and started", 2, &Life::killTheWindowManager},
    {"bus killed and started", 2, &Life::killTheBus},
    {"second copy started", 1, &Life::startASecondCopy},
    {"logged out and in", 2, &Life::logOutAndIn, endsTheAgent},
    {"upgraded to another version", 1, &Life::upgrade, endsTheAgent},
    {"service killed and started", 1, &Life::killTheService},
    {"item's window destroyed", 1, &Life::destroyTheItem},
    {"flood from a stranger", 1, &Life::flood},
    {"hints without bound", 1, &Life::sendHintsWithoutBound, endsTheAgent},
    {"link in place of the messages", 1, &Life::putALinkInPlaceOfTheMessages, endsTheAgent},
    {"question's window destroyed", 1, &Life::destroyTheQuestion},
    {"hidden windows destroyed", 1, &Life::destroyWhatNobodySees},
    {"spoken in the dead service's name", 1, &Life::speakInTheNameOfTheDeadService},
    {"events that are too much", 1, &Life::sendEventsThatAreTooMuch},
    {"logged out by the session manager", 1, &Life::logOutByTheSessionManager, endsTheAgent},
    {"logged out by the session manager with a pop-up", 2, &Life::logOutByTheSessionManagerWithAPopUp, endsTheAgent},
    {"logged out by the session manager while the tool hung", 1, &Life::logOutByTheSessionManagerWhileTheToolHangs,
     endsTheAgent},
    {"something else in place of the messages", 1, &Life::putSomethingElseInPlaceOfTheMessages, endsTheAgent},
    {"something else in place of the settings", 1, &Life::putSomethingElseInPlaceOfTheSettings},
    {"name taken by another program", 1, &Life::takeItsName},
    {"lock taken and let go", 1, &Life::takeItsLockAwayAndLetItGo},
    {"bus stalled", 1, &Life::stallTheBus},
    {"panel that takes nothing in", 1, &Life::killThePanelForOneThatTakesNothingIn},
    {"bus without room", 1, &Life::fillTheBus},
    {"logged out while the tool hung", 1, &Life::logOutWhileTheToolHangs, endsTheAgent},
    {"disk full", 1, &Life::fillTheDisk, endsTheAgent},
    {"folder given to somebody else", 1, &Life::giveItsFolderToSomebodyElse, endsTheAgent},
    {"standard error lost", 1, &Life::loseTheStandardError, endsTheAgent},
};

const Life::Operation Life::operationsOnAPopUp[] = {
    {"pop-up closed", 4, &Life::closeThePopUp},
    {"link followed", 4, &Life::followTheLink},
    {"pop-up's window destroyed", 1, &Life::destroyThePopUp},
};

Life::Life(unsigned seed, double days, std::chrono::duration<double> length)
    : m_pace(days * 86400 / length.count())
    , m_lastMessageId(messagesOfAFlood + 150 + static_cast<int>(days * 10 + length.count()))
    , m_seed(seed)
    , m_random(seed)
{
}

bool Life::start()
{
    for (const std::span<const Operation> all : {std::span<const Operation>(operations), {operationsOnAPopUp}}) {
        for (const Operation &operation : all) {
            m_counts[operation.name] = 0;
        }
    }
    QList<ScriptedAnswer> answers;
    for (int id = 0; id < m_lastMessageId;) {
        // Once there is more than the agent keeps: well before the middle of a run of minutes, for the feed is also
        // asked at each log-in.
        const bool isFlood = answers.size() == 6;
        QList<FeedMessage> messages;
        for (int left = isFlood ? messagesOfAFlood : random(12); left > 0 && id < m_lastMessageId; --left) {
            messages.append({.id = QByteArray::number(++id),
                             .type = oneOf(messageTypes),
                             .priority = oneOf(messagePriorities),
                             .repeat = random(4),
                             .text = "http://127.0.0.1/news is where to read <b>more</b>. " +
                                     QByteArray("And more. ").repeated(random(30))});
        }
        answers.append({.status = !isFlood && random(8) == 0 ? 503 : 200, .body = feedDocument(messages)});
        if (!isFlood && random(4) == 0) {
            answers.last().interim = "HTTP/1.1 103 Early Hints\r\nLink: </style.css>\r\n\r\n";
            answers.last().pieces = 100;
            answers.last().pause = 1;
        }
        const int kind = isFlood ? 0 : random(12);
        if (kind == 1) {
            answers.last().mutedFrom = 10;
        } else if (kind == 2) {
            answers.last().pieces = 1;
            answers.last().pause = 300;
        }
        if (kind == 1 || kind == 2) {
            m_unending.insert(static_cast<int>(answers.size()) - 1);
        }
    }
    answers.append({.body = feedDocument({})});
    if (!m_feed.start(answers)) {
        return false;
    }
    // Whoever may not write any more is told so and not killed: a full disk kills nobody. Inherited by the agent.
    std::signal(SIGXFSZ, SIG_IGN);
    QProcessEnvironment environment;
    m_clock.addTo(environment);
    // What is freed is overwritten, so that a use of it shows.
    environment.insert(QStringLiteral("MALLOC_PERTURB_"), QStringLiteral("165"));
    environment.insert(QStringLiteral("GLIBC_TUNABLES"), QStringLiteral("glibc.malloc.tcache_count=0"));
    environment.insert(QStringLiteral("KIV_TEST_SERVICE_TOOL"), m_tool);
    setUsualTool();
    if (!m_session.start({.program = Agent::Program::WithToolOfTheTest,
                          .agentsEnvironment = environment,
                          .feed = m_feed.address(QStringLiteral("/messages")),
                          .beforeTheAgent = [this] {
                              SettingsProgram::write(m_session.desktop, 1, 1, 0);
                              return true;
                          }})) {
        return false;
    }
    if (!asksTheFeedAtItsStart()) {
        return false;
    }
    m_on = m_session.agent->itemPicture();
    m_secondCopy.emplace(m_session.desktop);
    // It says each time that the bus has gone.
    m_session.service->process().process().setProcessChannelMode(QProcess::SeparateChannels);
    m_session.service->process().process().setStandardErrorFile(QProcess::nullDevice());
    m_time.start();
    return true;
}

QList<XWindow> Life::windows(bool (*kind)(const XWindow &)) const
{
    QList<XWindow> windows = m_session.agent->freeWindows();
    windows.removeIf([kind](const XWindow &window) { return !kind(window); });
    return windows;
}

std::optional<XWindow> Life::popUp() const
{
    const QList<XWindow> popUps = windows(isPopUp);
    return popUps.isEmpty() ? std::nullopt : std::optional(popUps.last());
}

bool Life::isInItsCorner(const XWindow &popUp) const
{
    return popUp.geometry.topLeft() == QPoint(m_screen.width() - popUp.geometry.width() - 10, 30);
}

bool Life::isGone(const XWindow &popUp) const
{
    return std::ranges::none_of(windows(isPopUp), [&](const XWindow &window) { return window.id == popUp.id; });
}

void Life::letPass(std::chrono::seconds time)
{
    m_clock.advance(time);
    m_lived += time;
}

QByteArrayList Life::unexpected(QByteArrayList said)
{
    said.removeIf([](const QByteArray &line) {
        return line.isEmpty() || line.contains("another program has the name") ||
               line.contains("cannot be read and is kept as") || line.contains("what is there cannot be kept aside") ||
               line.contains("the folder belongs to somebody else") ||
               (line.contains("Could not write file") && line.endsWith("com.tamborel.kivmenua.plist"));
    });
    return said;
}

bool Life::openMenu()
{
    if (!isBack()) {
        return false;
    }
    const std::optional<XWindow> item = m_session.agent->dockedItem();
    if (!item) {
        ADD_FAILURE() << "the item is lost again";
        return false;
    }
    input().click(item->geometry.center());
    const bool opened = waitUntil([this] { return menuIsOpen(); });
    EXPECT_TRUE(opened) << "the menu does not open";
    return opened;
}

bool Life::menuIsOpen() const
{
    const QList<XWindow> menus = windows(isMenu);
    return menus.size() == 1 && m_session.agent->isDrawn(menus.last());
}

bool Life::isBack()
{
    // The panel waits ten seconds or so for a window manager when it starts anew.
    const bool back = waitUntil([this] { return isDocked(); }, 30s);
    EXPECT_TRUE(back) << "the item is lost";
    return back;
}

bool Life::closeMenu()
{
    const bool closed = waitUntil([this] { return windows(isMenu).isEmpty() && input().isFree(); });
    EXPECT_TRUE(closed) << "the menu does not close";
    return closed;
}

bool Life::tellTheAgent(const QByteArray &line)
{
    m_session.service->send(line);
    m_session.service->send("flags 2");
    const bool off =
        waitUntil([this] { return m_session.agent->isDocked() && m_session.agent->itemPicture() != m_on; }, 30s);
    EXPECT_TRUE(off) << "the agent does not follow the service";
    m_session.service->send("flags 6");
    return isBack() && off;
}

bool Life::attachTheService()
{
    m_session.service->process().kill(); // It may still be on its way to its end.
    EXPECT_TRUE(m_session.service->attach(*m_session.agent));
    return tellTheAgent("actions 32792");
}

const Life::Operation &Life::draw(std::span<const Operation> from, Agents agents)
{
    const int sum = std::accumulate(from.begin(), from.end(), 0,
                                    [](int before, const Operation &operation) { return before + operation.weight; });
    while (true) {
        int lot = random(sum);
        auto operation = from.begin();
        for (; lot >= operation->weight; ++operation) {
            lot -= operation->weight;
        }
        if (agents == Agents::ComeAndGo || !operation->endsTheAgent) {
            return *operation;
        }
    }
}

void Life::carryOut(const Operation &operation)
{
    m_last.push_back(operation.name);
    if (m_last.size() > 5) {
        m_last.pop_front();
    }
    const testing::ScopedTrace trace(
        __FILE__, __LINE__,
        std::accumulate(m_last.begin(), m_last.end(), std::string("the last operations"),
                        [](const std::string &all, const std::string &name) { return all + ", " + name; }));
    if ((this->*operation.carryOut)()) {
        ++m_counts[operation.name];
    }
    EXPECT_TRUE(m_session.agent->process().isRunning()) << "the agent has died";
}

bool Life::carryOutOne(Agents agents)
{
    // With lots of its own, so that what happens by the way does not change what is drawn after it.
    m_random.seed(m_seed + ++m_number);
    const bool turnsToThePopUp = random(2) == 0;
    const Operation &onThePopUp = draw(operationsOnAPopUp, agents);
    carryOut(draw(operations, agents));
    // The next time it may have gone: half a minute of the agent's passes in a moment.
    if (!testing::Test::HasFailure() && turnsToThePopUp && popUp()) {
        carryOut(onThePopUp);
    }
    return !testing::Test::HasFailure();
}

void Life::letTimePass()
{
    // After an operation that took long, days may be due.
    std::chrono::seconds due(static_cast<qint64>(static_cast<double>(m_time.restart()) * m_pace / 1000));
    do {
        const std::chrono::seconds time = std::min<std::chrono::seconds>(due, 12h);
        leap(time);
        due -= time;
    } while (due > 0s && !testing::Test::HasFailure());
    EXPECT_TRUE(waitUntil([this] { return windows(isPopUp).size() <= 1; })) << "there are two pop-ups";
}

void Life::leap(std::chrono::seconds time)
{
    letPass(time);
    const auto days = std::chrono::duration_cast<std::chrono::days>(m_lived - m_livedBefore - 10min).count();
    EXPECT_TRUE(waitUntil([&] { return requestsSinceTheStart() > days; }))
        << "the feed is not asked every day: " << requestsSinceTheStart() << " requests in " << days << " days";
    EXPECT_TRUE(waitUntil([this] { return hasGivenUpWhatDoesNotEnd(); })) << "a request outlives the next";
}

bool Life::hasGivenUpWhatDoesNotEnd()
{
    std::set<int> asked;
    for (const QJsonObject &request : m_feed.requests()) {
        asked.insert(request.value(QLatin1String("request")).toInt());
    }
    asked.erase(std::prev(asked.end()));
    const QList<int> givenUp = m_feed.closedByClient();
    return std::ranges::none_of(
        asked, [&](int request) { return m_unending.contains(request) && !givenUp.contains(request); });
}
