#include "tests/session/support/AgentClock.h"
#include "tests/session/support/FeedMessages.h"
#include "tests/session/support/HostileClient.h"
#include "tests/session/support/Session.h"
#include "tests/session/support/SettingsProgram.h"
#include "tests/support/FeedServer.h"
#include "tests/support/ProcessMemory.h"
#include "tests/support/WaitUntil.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <X11/keysym.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <deque>
#include <iterator>
#include <map>
#include <numeric>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace std::chrono_literals;

constexpr std::array messageTypes{"update", "news", "notice", "warning"};
constexpr std::array messagePriorities{"low", "medium", "high"};

qint64 median(std::vector<qint64> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

std::chrono::duration<double> lengthOfTheRun()
{
    constexpr std::chrono::duration<double> whenNothingIsSaid = 5s;
    const double minutes = qEnvironmentVariable("KIV_SOAK_MINUTES").toDouble();
    return minutes > 0 ? std::chrono::duration<double>(minutes * 60) : whenNothingIsSaid;
}

/// How many days the agent lives in that time: one in a minute unless told otherwise.
double daysOfTheRun()
{
    const double days = qEnvironmentVariable("KIV_SOAK_DAYS").toDouble();
    return days > 0 ? days : lengthOfTheRun().count() / 60;
}

unsigned seedOfTheRun()
{
    // Always the same among the other tests, where nobody would know what a failure has to do with the last change.
    constexpr unsigned whenNothingIsSaid = 1;
    const unsigned seed = qEnvironmentVariable("KIV_SOAK_SEED").toUInt();
    return seed != 0 ? seed : whenNothingIsSaid;
}

/// A session that lives through days, in which whatever happens is drawn by lot. Each operation waits for what it must
/// lead to.
class Life final
{
public:
    explicit Life(unsigned seed)
        : m_seed(seed)
        , m_random(seed)
    {
    }

    bool start();
    /// Carries one operation out, and perhaps another on the pop-up that is shown then. False, with a test failure,
    /// when one does not lead to what it must.
    bool carryOutOne();
    /// Lets the agent's clock catch up with its pace.
    void letTimePass();

    [[nodiscard]] std::chrono::seconds lived() const { return m_lived; }
    [[nodiscard]] qint64 memory() const { return ProcessMemory::privateKilobytes(m_session.agent->pid()); }
    /// How often each operation led to what it must.
    [[nodiscard]] const std::map<std::string, int> &counts() const { return m_counts; }
    [[nodiscard]] Agent &agent() { return *m_session.agent; }

private:
    /// An operation: false when there is nothing to do it to just now.
    using Carry = bool (Life::*)();
    struct Operation {
        const char *name;
        int weight;
        Carry carryOut;
    };
    static const Operation operations[];
    static const Operation operationsOnAPopUp[];

    bool openAndCloseTheMenu();
    bool chooseACommand();
    bool askForADisconnect();
    bool takeTheItemAway();
    bool hint();
    bool closeThePopUp();
    bool followTheLink();
    bool changeTheSettings();
    bool changeTheScreen();
    bool killThePanel();
    bool killTheWindowManager();
    bool killTheBus();
    bool startASecondCopy();
    bool logOutAndIn();
    bool upgrade();
    bool destroyTheItem();

    bool attachTheService();
    const Operation &draw(std::span<const Operation> from);
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
    [[nodiscard]] bool menuIsOpen() const;
    bool isBack();
    bool closeMenu();
    bool tellTheAgent(const QByteArray &line);

    Session &session() { return m_session; }
    XInput &input() { return m_session.desktop.input(); }
    XView &view() { return m_session.desktop.view(); }

    /// How fast the agent lives.
    const double m_pace = daysOfTheRun() * 86400 / lengthOfTheRun().count();
    const int m_lastMessageId = 150 + static_cast<int>(daysOfTheRun()) * 10;
    const unsigned m_seed;
    int m_version = 0;     ///< Of the program, by which it has been replaced so often.
    unsigned m_number = 0; ///< Of the operation.
    std::mt19937 m_random;
    FeedServer m_feed;
    AgentClock m_clock;
    Session m_session;
    std::optional<Agent> m_secondCopy;
    QImage m_on; ///< The item while the service has switched the agent on.
    QSize m_screen{1280, 800};
    QElapsedTimer m_time;
    std::chrono::seconds m_lived{0};
    std::map<std::string, int> m_counts;
    std::deque<std::string> m_last; ///< The last operations, this one included.
};

const Life::Operation Life::operations[] = {
    {"menu opened and closed", 10, &Life::openAndCloseTheMenu},
    {"command allowed and chosen", 6, &Life::chooseACommand},
    {"question asked and refused", 3, &Life::askForADisconnect},
    {"item removed and shown", 3, &Life::takeTheItemAway},
    {"hint sent", 6, &Life::hint},
    {"settings changed", 4, &Life::changeTheSettings},
    {"screen resized", 3, &Life::changeTheScreen},
    {"panel killed and started", 2, &Life::killThePanel},
    {"window manager ended and started", 2, &Life::killTheWindowManager},
    {"bus killed and started", 2, &Life::killTheBus},
    {"second copy started", 1, &Life::startASecondCopy},
    {"logged out and in", 2, &Life::logOutAndIn},
    {"upgraded to another version", 1, &Life::upgrade},
    {"item's window destroyed", 1, &Life::destroyTheItem},
};

const Life::Operation Life::operationsOnAPopUp[] = {
    {"pop-up closed", 1, &Life::closeThePopUp},
    {"link followed", 1, &Life::followTheLink},
};

bool Life::start()
{
    for (const std::span<const Operation> all : {std::span<const Operation>(operations), {operationsOnAPopUp}}) {
        for (const Operation &operation : all) {
            m_counts[operation.name] = 0;
        }
    }
    QList<ScriptedAnswer> answers;
    for (int id = 0; id < m_lastMessageId;) {
        QList<FeedMessage> messages;
        for (int left = random(12); left > 0 && id < m_lastMessageId; --left) {
            messages.append({.id = QByteArray::number(++id),
                             .type = oneOf(messageTypes),
                             .priority = oneOf(messagePriorities),
                             .repeat = random(4),
                             .text = "http://127.0.0.1/news is where to read <b>more</b>. " +
                                     QByteArray("And more. ").repeated(random(30))});
        }
        answers.append({.status = random(8) == 0 ? 503 : 200, .body = feedDocument(messages)});
    }
    answers.append({.body = feedDocument({})});
    if (!m_feed.start(answers)) {
        return false;
    }
    QProcessEnvironment environment;
    m_clock.addTo(environment);
    // What is freed is overwritten, so that a use of it shows.
    environment.insert(QStringLiteral("MALLOC_PERTURB_"), QStringLiteral("165"));
    environment.insert(QStringLiteral("GLIBC_TUNABLES"), QStringLiteral("glibc.malloc.tcache_count=0"));
    SettingsProgram::write(m_session.desktop, 1, 1, 0);
    if (!m_session.start({.agentsEnvironment = environment, .feed = m_feed.address(QStringLiteral("/messages"))})) {
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

bool Life::openAndCloseTheMenu()
{
    if (openMenu()) {
        const std::size_t way = static_cast<std::size_t>(random(3));
        constexpr std::array ways{"by Escape", "by a click on the item", "by a click beside it"};
        SCOPED_TRACE(ways[way]);
        switch (way) {
        case 0:
            input().key(XK_Escape);
            break;
        case 1:
            // A click that comes as fast as the second of two keeps it open.
            EXPECT_FALSE(waitUntil([this] { return !menuIsOpen(); }, 450ms)) << "the menu closes by itself";
            input().press();
            input().release();
            break;
        default:
            input().click({600, 600});
        }
        closeMenu();
    }
    return true;
}

bool Life::chooseACommand()
{
    const QByteArray code = QByteArray::number(32793 + random(4));
    if (!tellTheAgent("actions 32792 " + code) || !openMenu()) {
        return true;
    }
    const qsizetype before = m_session.service->events().size();
    input().key(XK_Down, Session::Workspace + 1);
    input().key(XK_Right);
    EXPECT_TRUE(waitUntil([this] { return windows(isMenu).size() == 2; })) << "the submenu does not open";
    input().key(XK_Return);
    EXPECT_TRUE(waitUntil([&] { return m_session.service->events().size() == before + 1; })) << "the choice is lost";
    EXPECT_TRUE(m_session.service->events().last().startsWith("meoa " + code));
    closeMenu();
    return true;
}

bool Life::askForADisconnect()
{
    if (!tellTheAgent("actions 32792") || !openMenu()) {
        return true;
    }
    input().key(XK_Down, Session::Disconnect + 1);
    input().key(XK_Return);
    const auto questions = [this] {
        return windows([](const XWindow &window) { return !window.overrideRedirect; }).size();
    };
    const bool asked = waitUntil([&] {
        return questions() == 1 && view().focusOwnerPid() == m_session.agent->pid() && windows(isMenu).isEmpty();
    });
    EXPECT_TRUE(asked) << "nothing is asked";
    input().key(XK_Escape);
    EXPECT_TRUE(waitUntil([&] { return questions() == 0; })) << "the question stays";
    return true;
}

bool Life::takeTheItemAway()
{
    m_session.service->send("flags 4");
    EXPECT_TRUE(waitUntil([this] { return !m_session.agent->dockedItem(); })) << "the item stays";
    m_session.service->send("flags 6");
    isBack();
    return true;
}

bool Life::hint()
{
    constexpr std::array texts{
        "Good morning", "A <b>bold</b> word and <i>others</i>",
        "A text that is long enough for two lines of the pop-up, and then some more of the room"};
    m_session.service->send(QByteArray("hint ") + oneOf(texts));
    EXPECT_TRUE(waitUntil([this] { return popUp().has_value(); })) << "no pop-up comes";
    return true;
}

bool Life::closeThePopUp()
{
    const std::optional<XWindow> window = popUp();
    if (!window) {
        return false;
    }
    EXPECT_TRUE(waitUntil([&] { return isGone(*window) || m_session.agent->isDrawn(*window); }));
    const int half = (window->geometry.width() - 33) / 2;
    const bool later = random(2) == 0;
    const int x = isHint(*window) ? window->geometry.width() / 2 : later ? 11 + half / 2 : 22 + half * 3 / 2;
    input().click(fromBelow(*window, x, 26));
    EXPECT_TRUE(waitUntil([&] { return isGone(*window); })) << "the pop-up stays";
    return true;
}

bool Life::followTheLink()
{
    const std::optional<XWindow> window = popUp();
    if (!window || isHint(*window)) {
        return false;
    }
    EXPECT_TRUE(waitUntil([&] { return isGone(*window) || m_session.agent->isDrawn(*window); }));
    const qsizetype before = m_session.browser.opened().size();
    input().click(window->geometry.topLeft() + QPoint(84, 50));
    const auto isOpened = [&] { return m_session.browser.opened().size() == before + 1; };
    EXPECT_TRUE(waitUntil([&] { return isOpened() || isGone(*window); })) << "nothing is opened";
    if (!isOpened()) {
        return false; // Its time was over before the click.
    }
    m_clock.advance(2s);
    m_lived += 2s;
    EXPECT_TRUE(waitUntil([&] { return isGone(*window); })) << "the pop-up stays";
    return true;
}

bool Life::changeTheSettings()
{
    SettingsProgram::write(m_session.desktop, random(7), random(5), random(5));
    SettingsProgram::announce(m_session.desktop, *m_session.agent);
    return true;
}

bool Life::changeTheScreen()
{
    constexpr std::array sizes{QSize(1280, 800), QSize(1024, 768), QSize(1920, 1200), QSize(1600, 1200)};
    m_screen = oneOf(sizes);
    EXPECT_TRUE(m_session.desktop.switchTo(m_screen));
    // The panel starts anew with the screen; one that is just starting may miss that, and is started again.
    if (!waitUntil([this] { return m_session.desktop.panelGeometry().width() == m_screen.width(); }, 5s)) {
        m_session.desktop.stopPanel();
        EXPECT_TRUE(m_session.desktop.startPanel(Desktop::TraySide::Left));
    }
    isBack();
    EXPECT_TRUE(waitUntil([this] {
        const std::optional<XWindow> window = popUp();
        return !window || isInItsCorner(*window);
    })) << "the pop-up stays behind";
    return true;
}

bool Life::killThePanel()
{
    m_session.desktop.stopPanel();
    const auto alone = [this] {
        return windows([](const XWindow &window) {
            return window.geometry.height() < 60 && window.geometry.width() < 60 && window.geometry.top() < 60;
        });
    };
    const bool standsAlone =
        waitUntil([&] { return alone().size() == 1 && m_session.agent->isDrawn(alone().first()); });
    EXPECT_TRUE(standsAlone) << "the item is lost with the panel";
    if (standsAlone && random(2) == 0) {
        input().click(alone().first().geometry.center());
        EXPECT_TRUE(waitUntil([this] { return menuIsOpen(); })) << "the menu does not open";
        input().key(XK_Escape);
        closeMenu();
    }
    EXPECT_TRUE(m_session.desktop.startPanel(Desktop::TraySide::Left));
    isBack();
    return true;
}

bool Life::killTheWindowManager()
{
    EXPECT_TRUE(m_session.desktop.stopWindowManager());
    EXPECT_TRUE(m_session.desktop.startWindowManager());
    isBack();
    return true;
}

bool Life::killTheBus()
{
    m_session.desktop.bus().stop();
    if (random(2) == 0) {
        openAndCloseTheMenu();
    }
    EXPECT_TRUE(m_session.desktop.bus().start());
    EXPECT_TRUE(waitUntil([this] {
        // It tries again every five seconds.
        m_clock.advance(5s);
        m_lived += 5s;
        return m_session.agent->isLinked();
    })) << "the link does not come back";
    attachTheService();
    return true;
}

bool Life::attachTheService()
{
    m_session.service->process().kill(); // It may still be on its way to its end.
    EXPECT_TRUE(m_session.service->attach(*m_session.agent));
    return tellTheAgent("actions 32792");
}

/// The queue and the last id are all that it has of the session before.
bool Life::logOutAndIn()
{
    Agent &agent = *m_session.agent;
    agent.process().terminate();
    const bool ended = waitUntil([&] { return !agent.process().isRunning(); }, 60s);
    EXPECT_TRUE(ended) << "it outlives the session";
    EXPECT_EQ(agent.process().exitCode(), 0) << agent.standardError().constData();
    if (ended && agent.startAndDock()) {
        attachTheService();
    }
    return true;
}

bool Life::upgrade()
{
    m_session.agent->setVersion("8.0." + QByteArray::number(++m_version));
    return logOutAndIn();
}

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

bool Life::startASecondCopy()
{
    EXPECT_TRUE(m_secondCopy->start());
    EXPECT_TRUE(waitUntil([this] { return !m_secondCopy->process().isRunning(); })) << "there are two";
    EXPECT_EQ(m_secondCopy->process().exitCode(), 0);
    return true;
}

const Life::Operation &Life::draw(std::span<const Operation> from)
{
    const int sum = std::accumulate(from.begin(), from.end(), 0,
                                    [](int before, const Operation &operation) { return before + operation.weight; });
    int lot = random(sum);
    auto operation = from.begin();
    for (; lot >= operation->weight; ++operation) {
        lot -= operation->weight;
    }
    return *operation;
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

bool Life::carryOutOne()
{
    // With lots of its own, so that what happens by the way does not change what is drawn after it.
    m_random.seed(m_seed + ++m_number);
    const bool turnsToThePopUp = random(2) == 0;
    const Operation &onThePopUp = draw(operationsOnAPopUp);
    carryOut(draw(operations));
    // The next time it may have gone: half a minute of the agent's passes in a moment.
    if (!testing::Test::HasFailure() && turnsToThePopUp && popUp()) {
        carryOut(onThePopUp);
    }
    return !testing::Test::HasFailure();
}

void Life::letTimePass()
{
    // After an operation that took long, days may be due, and a timer fires once for a leap, however long that is.
    constexpr std::chrono::seconds maxLeap = 12h;
    const auto due = std::chrono::seconds(static_cast<qint64>(static_cast<double>(m_time.elapsed()) * m_pace / 1000));
    do {
        if (const auto leap = std::min(due - m_lived, maxLeap); leap > 0s) {
            m_clock.advance(leap);
            m_lived += leap;
        }
        // The feed is asked at the start and then every day.
        const auto days = std::chrono::duration_cast<std::chrono::days>(m_lived - 10min).count();
        EXPECT_TRUE(waitUntil([&] { return m_feed.requests().size() > days; })) << "the feed is not asked";
    } while (m_lived < due && !testing::Test::HasFailure());
    EXPECT_TRUE(waitUntil([this] { return windows(isPopUp).size() <= 1; })) << "there are two pop-ups";
}

} // namespace

TEST(Soak, OfDaysInASessionLeavesTheAgentAsItWas)
{
    const unsigned seed = seedOfTheRun();
    const auto length = lengthOfTheRun();
    std::printf("seed %u\n", seed);
    std::fflush(stdout);
    SCOPED_TRACE("seed " + std::to_string(seed));
    Life life(seed);
    ASSERT_TRUE(life.start());
    const qint64 atStart = life.memory();
    std::vector<qint64> memory;
    const auto start = std::chrono::steady_clock::now();
    // On a machine at work days may take longer.
    const auto isOver = [&] {
        return std::chrono::steady_clock::now() - start >= length &&
               static_cast<double>(life.lived().count()) >= std::floor(daysOfTheRun()) * 86400;
    };
    bool goesOn = true;
    while (goesOn && !isOver()) {
        life.letTimePass();
        goesOn = life.carryOutOne();
        memory.push_back(life.memory());
    }
    // It goes up and down with the windows that are open.
    const std::size_t quarter = memory.size() / 4;
    const qint64 inTheSecondQuarter = median({memory.begin() + quarter, memory.begin() + 2 * quarter + 1});
    const qint64 inTheLastQuarter = median({memory.end() - 1 - quarter, memory.end()});
    int operations = 0;
    for (const auto &[name, count] : life.counts()) {
        std::printf("%6d  %s\n", count, name.c_str());
        operations += count;
        // The shorter ones do not come to everything.
        EXPECT_TRUE(count > 0 || length < 5min || HasFailure()) << name;
    }
    std::printf("%d operations in %.1f simulated days, %d failures\n"
                "private memory %lld kB at the start, %lld kB in the second quarter of the time, %lld kB in the last\n",
                operations, static_cast<double>(life.lived().count()) / 86400, HasFailure() ? 1 : 0,
                static_cast<long long>(atStart), static_cast<long long>(inTheSecondQuarter),
                static_cast<long long>(inTheLastQuarter));
    EXPECT_EQ(life.agent().systemLog(), QByteArrayList());
    QByteArrayList errors = life.agent().standardError().split('\n');
    errors.removeAll(QByteArray());
    EXPECT_EQ(errors, QByteArrayList());
#ifndef __SANITIZE_ADDRESS__ // It keeps what is freed for a while.
    constexpr qint64 maxGrowth = 1024;
    EXPECT_LT(inTheLastQuarter - inTheSecondQuarter, maxGrowth) << "kB from the second quarter of the time to the last";
#endif
}
