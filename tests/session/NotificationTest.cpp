#include "Agent.h"
#include "AgentClock.h"
#include "Browser.h"
#include "Desktop.h"
#include "OtherWindow.h"
#include "Service.h"
#include "SmallDisk.h"
#include "platform/PropertyList.h"
#include "tests/support/BusPeer.h"
#include "tests/support/FeedServer.h"
#include "tests/support/WaitUntil.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDir>

#include <gtest/gtest.h>

#include <optional>

namespace
{

using namespace std::chrono_literals;

struct Message {
    const char *id;
    const char *type = "notice";
    const char *priority = "medium";
    int repeat = 1;
    QByteArray text = "A plain notice.";
    const char *minVersion = "any";
};

QByteArray element(const char *name, const QByteArray &text)
{
    return QByteArray("<") + name + ">" + text + "</" + name + ">";
}

QByteArray document(const QList<Message> &messages)
{
    QByteArray content;
    for (const Message &message : messages) {
        content += element("supportMessage", element("messageId", message.id) + element("messageType", message.type) +
                                                 element("messagePriority", message.priority) +
                                                 element("messageRepeat", QByteArray::number(message.repeat)) +
                                                 element("minDate", "any") + element("maxDate", "any") +
                                                 element("minVersion", message.minVersion) +
                                                 element("contentData", message.text.toBase64()));
    }
    return element("supportMessages", content);
}

/// An entry of the cache file, as far as the tests look at it: "3x2" is message 3 with repeat code 2.
using Entries = std::vector<std::string>;

/// The agent with a feed in a session of its own, and a clock that the test sets.
class Notification : public testing::Test
{
protected:
    enum Button { RemindMeLater, DoNotRemindMeLater };

    static void SetUpTestSuite() { whyNoDisk = SmallDisk::unshareMounts(); }

    void SetUp() override
    {
        ASSERT_TRUE(desktop.start());
        ASSERT_TRUE(desktop.startWindowManager());
        ASSERT_TRUE(desktop.startPanel());
        agent.emplace(desktop);
    }

    /// Starts the agent with a feed that has these messages at the first request, those at the second, and so on; none
    /// at all later requests.
    bool start(const QList<QList<Message>> &feeds)
    {
        QList<ScriptedAnswer> answers;
        for (const QList<Message> &messages : feeds) {
            answers.append(ScriptedAnswer{.body = document(messages)});
        }
        answers.append(ScriptedAnswer{.body = document({})});
        if (!feed.start(answers)) {
            return false;
        }
        agent->feed = feed.address(QStringLiteral("/messages"));
        clock.addTo(agent->environment);
        browser.addTo(agent->environment);
        return agent->startAndDock();
    }

    [[nodiscard]] QString home() const { return desktop.environment().value(QStringLiteral("HOME")); }
    [[nodiscard]] QString cacheFile() const
    {
        return home() + QStringLiteral("/Library/Caches/com.tamborel.kivune/notifications.plist");
    }
    [[nodiscard]] QString cacheFolder() const { return QFileInfo(cacheFile()).path(); }
    [[nodiscard]] QByteArray cacheContent() const
    {
        QFile file(cacheFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    [[nodiscard]] Entries cache() const
    {
        Entries entries;
        for (const QVariant &entry : PropertyList::readFile(cacheFile()).toList()) {
            const QVariantMap record = entry.toMap();
            entries.push_back(record.value(QStringLiteral("messageId")).toString().toStdString() + 'x' +
                              std::to_string(record.value(QStringLiteral("messageRepeat")).toInt()));
        }
        return entries;
    }
    [[nodiscard]] bool cacheBecomes(const Entries &entries) const
    {
        return waitUntil([&] { return cache() == entries; });
    }

    /// The user's settings, as the settings program writes them, with everything to be shown.
    void setPreferences(int show, int close, int repeat) const
    {
        QVariantMap preferences{{QStringLiteral("KivNotificationShowTimeout"), show},
                                {QStringLiteral("KivNotificationCloseTimeout"), close},
                                {QStringLiteral("KivNotificationRepeatTimeout"), repeat}};
        for (const char *what :
             {"News", "Notices", "Updates", "Warnings", "LowPriority", "MediumPriority", "HighPriority"}) {
            preferences.insert(QStringLiteral("KivNotificationShow") + QLatin1String(what), true);
        }
        const QString folder = home() + QStringLiteral("/Library/Preferences");
        const QString file = folder + QStringLiteral("/com.tamborel.kivmenua.plist");
        const QVariant lastId = PropertyList::readFile(file).toMap().value(QStringLiteral("KivNotificationLastMessId"),
                                                                           QStringLiteral("0"));
        preferences.insert(QStringLiteral("KivNotificationLastMessId"), lastId);
        ASSERT_TRUE(QDir().mkpath(folder));
        ASSERT_TRUE(PropertyList::writeFile(file, preferences, PropertyList::Writing::InPlace));
    }

    /// Says that the settings have changed; returns once the agent must have heard it.
    void announceSettings()
    {
        const BusPeer settingsProgram(desktop.bus());
        ASSERT_TRUE(settingsProgram.connection().send(QDBusMessage::createSignal(
            QStringLiteral("/"), QStringLiteral("com.tamborel.kivune.DistributedNotifications"),
            QStringLiteral("KivMunuUpdateSettingsNotification"))));
        // Messages of one sender to one receiver keep their order. This one, which is no event, is answered by the
        // thread that has had the signal before.
        const QDBusMessage nonsense =
            QDBusMessage::createMethodCall(QStringLiteral("com.tamborel.kivune.p%1").arg(agent->pid()),
                                           QStringLiteral("/com/tamborel/kivune/AppleEvents"),
                                           QStringLiteral("com.tamborel.kivune.AppleEvents"), QStringLiteral("Send"));
        EXPECT_EQ(settingsProgram.connection().call(nonsense).errorName(),
                  QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"));
    }

    /// The pop-up, once it is there and drawn.
    std::optional<XWindow> popUp()
    {
        const bool shown = waitUntil([this] {
            const QList<XWindow> windows = agent->freeWindows();
            return windows.size() == 1 && agent->isDrawn(windows.first());
        });
        EXPECT_TRUE(shown) << "there are " << agent->freeWindows().size() << " windows and not one pop-up";
        return shown ? std::optional(agent->freeWindows().first()) : std::nullopt;
    }
    [[nodiscard]] bool popUpIsAnother(const XWindow &before)
    {
        return waitUntil([&] {
            const QList<XWindow> windows = agent->freeWindows();
            return windows.size() == 1 && windows.first().id != before.id;
        });
    }
    /// True when nothing is shown, nor comes up soon.
    [[nodiscard]] bool nothingComesUp()
    {
        return agent->waitUntilClosed() && !waitUntil([this] { return agent->hasMenu(); }, 400ms);
    }
    /// What is to be seen of a window once nothing of it changes any more.
    [[nodiscard]] QImage settledPicture(const XWindow &window)
    {
        QImage picture;
        do {
            picture = desktop.view().grab(window.geometry);
        } while (waitUntil([&] { return desktop.view().grab(window.geometry) != picture; }, 300ms));
        return picture;
    }
    /// Where a pop-up of this size belongs on a screen of that size.
    [[nodiscard]] static QRect corner(const XWindow &window, QSize screen)
    {
        return {screen.width() - window.geometry.width() - 10, 30, window.geometry.width(), window.geometry.height()};
    }

    /// A point of the pop-up, counted from its left and lower edges.
    [[nodiscard]] static QPoint fromBelow(const XWindow &window, int x, int y)
    {
        return {window.geometry.left() + x, window.geometry.bottom() + 1 - y};
    }
    void click(const XWindow &window, Button button)
    {
        const int half = (window.geometry.width() - 33) / 2;
        desktop.input().click(fromBelow(window, button == RemindMeLater ? 11 + half / 2 : 22 + half * 3 / 2, 26));
    }
    void clickClose(const XWindow &window)
    {
        desktop.input().click(fromBelow(window, window.geometry.width() / 2, 26));
    }
    /// The first word of a pop-up that has a title.
    [[nodiscard]] static QPoint firstWord(const XWindow &window)
    {
        return window.geometry.topLeft() + QPoint(72 + 12, 11 + 20 + 11 + 8);
    }

    static QString whyNoDisk; ///< Empty when there can be a small one.

    Desktop desktop;
    FeedServer feed;
    AgentClock clock;
    Browser browser;
    std::optional<Agent> agent; ///< Once the desktop is there.
};

QString Notification::whyNoDisk;

TEST_F(Notification, FromTheFeedAppearsInTheCornerWithoutAWindowManagersHelp)
{
    ASSERT_TRUE(start({{{.id = "1", .type = "warning"}}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    EXPECT_EQ(window->geometry, corner(*window, {1280, 800}));
    EXPECT_EQ(window->geometry.width(), 403);
    EXPECT_TRUE(window->overrideRedirect);
    EXPECT_EQ(feed.requests().size(), 1);
    EXPECT_TRUE(agent->standardError().isEmpty()) << agent->standardError().constData();
}

TEST_F(Notification, IsKeptWhenTheNextOneCannotBeJudged)
{
    // A version without a second component raises; what came before is in the queue, and the agent goes on.
    ASSERT_TRUE(start({{{.id = "1"}, {.id = "2"}, {.id = "3", .minVersion = "3"}, {.id = "4"}}}));
    ASSERT_TRUE(popUp());
    EXPECT_TRUE(waitUntil([this] { return agent->standardError().contains("no second component"); }));
    EXPECT_TRUE(cacheBecomes({"1x1", "2x1"}));

    clock.advance(31s);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_TRUE(cacheBecomes({"2x1"}));
    clock.advance(15min);
    EXPECT_TRUE(popUp());
}

TEST_F(Notification, LeavesQueueAndFileAsItsButtonSays)
{
    ASSERT_TRUE(start({{{.id = "1", .repeat = 2}, {.id = "2", .repeat = 3}, {.id = "3", .repeat = 2}}}));
    std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    EXPECT_TRUE(cacheBecomes({"1x2", "2x3", "3x2"}));

    click(*window, RemindMeLater);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_EQ(cache(), (Entries{"1x2", "2x3", "3x2"}));

    clock.advance(15min);
    window = popUp();
    ASSERT_TRUE(window);
    click(*window, DoNotRemindMeLater);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_EQ(cache(), (Entries{"1x2", "3x2"}));

    // The third closes by itself, and that counts as a close.
    clock.advance(15min);
    ASSERT_TRUE(popUp());
    clock.advance(31s);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_EQ(cache(), (Entries{"1x2", "3x1"}));

    clock.advance(15min);
    EXPECT_TRUE(nothingComesUp()) << "a message came back before its time";
    clock.advance(5h);
    ASSERT_TRUE(popUp());
    clock.advance(31s);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_EQ(cache(), (Entries{"1x1", "3x1"}));
    clock.advance(15min);
    ASSERT_TRUE(popUp());
    clock.advance(31s);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_EQ(cache(), Entries{"1x1"}) << "the last repeat is used up";
}

TEST_F(Notification, OfAnUpdateStaysUntilTheUserClosesIt)
{
    ASSERT_TRUE(start({{{.id = "1", .type = "update"}}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    for (int hour = 0; hour < 3; ++hour) {
        clock.advance(1h);
        EXPECT_FALSE(waitUntil([this] { return !agent->hasMenu(); }, 200ms));
    }
    click(*window, RemindMeLater);
    EXPECT_TRUE(agent->waitUntilClosed());
}

TEST_F(Notification, OpensALinkWithTheDefaultHandlerAndGoesASecondLater)
{
    ASSERT_TRUE(start({{{.id = "1", .repeat = 5, .text = "http://127.0.0.1/news is where to read more."},
                        {.id = "2", .repeat = 1}}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    clock.stop();
    desktop.input().click(firstWord(*window));
    ASSERT_TRUE(waitUntil([this] { return !browser.opened().isEmpty(); })) << "nothing was opened";
    EXPECT_EQ(browser.opened(), QByteArrayList{"http://127.0.0.1/news"});
    clock.advance(990ms);
    EXPECT_FALSE(waitUntil([this] { return !agent->hasMenu(); }, 400ms)) << "the pop-up went too soon";
    clock.advance(20ms);
    EXPECT_TRUE(agent->waitUntilClosed()) << "the pop-up stays longer";
    EXPECT_EQ(cache(), Entries{"2x1"});
    EXPECT_EQ(browser.opened().size(), 1);
}

TEST_F(Notification, SelectsNothingWhenTheMouseIsDraggedAcrossIt)
{
    ASSERT_TRUE(start({{{.id = "1", .text = "Words enough for a selection that anybody would see."}}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    desktop.input().move(firstWord(*window));
    const QImage before = settledPicture(*window);
    desktop.input().press();
    for (int step = 1; step <= 10; ++step) {
        desktop.input().move(firstWord(*window) + QPoint(step * 20, 0));
    }
    desktop.input().release();
    desktop.input().move(firstWord(*window));
    EXPECT_FALSE(waitUntil([&] { return desktop.view().grab(window->geometry) != before; }, 400ms));
    EXPECT_NE(desktop.view().selectionOwnerPid("PRIMARY"), agent->pid());
    ASSERT_EQ(agent->freeWindows().size(), 1);
    EXPECT_EQ(agent->freeWindows().first(), *window) << "the drag moved it";
}

TEST_F(Notification, ComesBackToItsPlaceWhenAnotherProgramMovesIt)
{
    ASSERT_TRUE(start({{{.id = "1"}}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    ChildProcess xdotool;
    xdotool.environment = desktop.environment();
    ASSERT_TRUE(xdotool.start(QStringLiteral("xdotool"), {QStringLiteral("windowmove"), QString::number(window->id),
                                                          QStringLiteral("100"), QStringLiteral("300")}));
    ASSERT_TRUE(popUpIsAnother(*window));
    EXPECT_EQ(agent->freeWindows().first().geometry, window->geometry);
    // Its time starts again: 29 s are not over when the first one's would be.
    clock.advance(29s);
    EXPECT_FALSE(waitUntil([this] { return !agent->hasMenu(); }, 300ms));
    clock.advance(2s);
    EXPECT_TRUE(agent->waitUntilClosed());
}

TEST_F(Notification, FollowsItsCornerWhenTheScreenChangesItsSize)
{
    ASSERT_TRUE(start({{{.id = "1"}}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    for (const QSize size : {QSize(1024, 768), QSize(1920, 1200), QSize(1280, 800)}) {
        ASSERT_TRUE(desktop.switchTo(size));
        // The panel starts anew with the screen, and the icon it lets go stands beside the pop-up for a moment.
        EXPECT_TRUE(waitUntil([&] {
            const QList<XWindow> windows = agent->freeWindows();
            return windows.size() == 1 && windows.first().id == window->id &&
                   windows.first().geometry == corner(*window, size);
        })) << size.width();
    }
}

TEST_F(Notification, ComesAtTheIntervalThatTheUserHasJustSet)
{
    setPreferences(5, 1, 0); // Every hour.
    ASSERT_TRUE(start({{{.id = "1"}, {.id = "2"}}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    click(*window, DoNotRemindMeLater);
    ASSERT_TRUE(agent->waitUntilClosed());
    ASSERT_TRUE(waitUntil([this] { return agent->isLinked(); }));

    setPreferences(1, 1, 0); // Every minute.
    clock.stop();
    announceSettings();
    clock.advance(59'900ms);
    EXPECT_TRUE(nothingComesUp()) << "a tick came early";
    clock.advance(700ms);
    EXPECT_TRUE(popUp()) << "a tick is late by more than a hundredth";
}

TEST_F(Notification, NeverTakesTheKeyboard)
{
    const OtherWindow editor(desktop.server(), {100, 300, 300, 200});
    const_cast<OtherWindow &>(editor).takeKeyboard();
    const qint64 self = QCoreApplication::applicationPid();
    ASSERT_EQ(desktop.view().focusOwnerPid(), self);
    ASSERT_TRUE(start({{{.id = "1"}}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    EXPECT_EQ(desktop.view().focusOwnerPid(), self);
    desktop.input().click(firstWord(*window));
    EXPECT_FALSE(waitUntil([&] { return desktop.view().focusOwnerPid() != self; }, 200ms));
    click(*window, RemindMeLater);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_EQ(desktop.view().focusOwnerPid(), self);
}

TEST_F(Notification, IsNotShownAgainAfterAKillWhenTheUserWantedNoReminder)
{
    setPreferences(1, 1, 0);
    ASSERT_TRUE(start({{{.id = "1", .repeat = 9}, {.id = "2", .repeat = 9}}}));
    std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    click(*window, DoNotRemindMeLater);
    ASSERT_TRUE(agent->waitUntilClosed());
    agent->process().kill();
    EXPECT_EQ(cache(), Entries{"2x9"});

    ASSERT_TRUE(agent->startAndDock());
    ASSERT_TRUE(waitUntil([this] { return feed.requests().size() == 2; }));
    EXPECT_TRUE(feed.requests().last().value(QLatin1String("line")).toString().contains(QLatin1String("&lastId=2&")));
    clock.advance(61s);
    window = popUp();
    ASSERT_TRUE(window);
    click(*window, DoNotRemindMeLater);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_EQ(cache(), Entries{});
    for (int hour = 0; hour < 3; ++hour) {
        clock.advance(1h);
        EXPECT_TRUE(nothingComesUp());
    }
}

TEST_F(Notification, GoesOnWithoutADiskToBeSavedOnAndIsSavedWhenThereIsRoom)
{
    if (!whyNoDisk.isEmpty()) {
        GTEST_SKIP() << "no disk of its own: " << whyNoDisk.toStdString();
    }
    const SmallDisk disk(cacheFolder());
    const QByteArray longText = QByteArray("Words enough for more than a page of the disk. ").repeated(200);
    ASSERT_TRUE(start({{{.id = "1"}, {.id = "2"}, {.id = "3"}, {.id = "4", .priority = "low", .text = longText}}}));
    std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    ASSERT_TRUE(cacheBecomes({"1x1", "2x1", "3x1", "4x1"}));
    const QByteArray before = cacheContent();
    const auto isUntouched = [&] {
        return cacheContent() == before &&
               QDir(cacheFolder()).entryList(QDir::Files | QDir::Hidden) ==
                   QStringList{QStringLiteral("filler"), QStringLiteral("notifications.plist")};
    };

    disk.fill();
    click(*window, DoNotRemindMeLater);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_TRUE(isUntouched());
    clock.advance(15min);
    window = popUp();
    ASSERT_TRUE(window);

    disk.setAccess(SmallDisk::Access::ReadOnly);
    click(*window, DoNotRemindMeLater);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_TRUE(isUntouched());
    clock.advance(15min);
    window = popUp();
    ASSERT_TRUE(window);

    disk.setAccess(SmallDisk::Access::ReadWrite);
    disk.makeRoom();
    click(*window, RemindMeLater);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_EQ(cache(), (Entries{"3x1", "4x1"})) << "what was done meanwhile counts";
    EXPECT_TRUE(agent->standardError().isEmpty()) << agent->standardError().constData();
}

TEST_F(Notification, IsSentAgainWhenTheAgentDiedBeforeThereWasRoomForIt)
{
    if (!whyNoDisk.isEmpty()) {
        GTEST_SKIP() << "no disk of its own: " << whyNoDisk.toStdString();
    }
    setPreferences(1, 1, 0);
    const SmallDisk disk(cacheFolder());
    disk.fill();
    const QByteArray longText = QByteArray("Words enough for more than a page of the disk. ").repeated(200);
    const QList<Message> messages = {{.id = "1"}, {.id = "2", .text = longText}};
    ASSERT_TRUE(start({messages, messages}));
    ASSERT_TRUE(popUp());
    agent->process().kill();
    EXPECT_TRUE(cacheContent().isEmpty());

    disk.makeRoom();
    ASSERT_TRUE(agent->startAndDock());
    ASSERT_TRUE(popUp());
    EXPECT_TRUE(feed.requests().last().value(QLatin1String("line")).toString().contains(QLatin1String("&lastId=0&")));
    EXPECT_TRUE(cacheBecomes({"1x1", "2x1"}));
}

TEST_F(Notification, OfTheServiceComesBeforeAllOthersAndOneAfterTheOther)
{
    ASSERT_TRUE(start({{{.id = "1", .priority = "high"}, {.id = "2", .priority = "high"}}}));
    std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    Service service(desktop);
    ASSERT_TRUE(service.attach(*agent));
    const QImage item = agent->itemPicture();
    service.send("hint First");
    service.send("hint Second, which is long enough that it takes two lines and then some more of the room there is");
    service.send("hint Third");
    service.send("flags 6"); // Whoever shows that has had the hints.
    ASSERT_TRUE(waitUntil([&] { return agent->itemPicture() != item; }));
    EXPECT_EQ(agent->freeWindows(), QList<XWindow>{*window}) << "what is shown stays";

    const auto textsInFile = [this] {
        QStringList texts;
        for (const QVariant &entry : PropertyList::readFile(cacheFile()).toList()) {
            texts.append(entry.toMap().value(QStringLiteral("messageText")).toString().left(6));
        }
        return texts.join(u'|').toStdString();
    };
    click(*window, RemindMeLater);
    ASSERT_TRUE(popUpIsAnother(*window));
    EXPECT_EQ(textsInFile(), "First|Second|Third|A plai|A plai");
    for (const char *rest : {"Second|Third|A plai|A plai", "Third|A plai|A plai"}) {
        window = popUp();
        ASSERT_TRUE(window);
        EXPECT_EQ(window->geometry, corner(*window, {1280, 800}));
        EXPECT_EQ(window->geometry.width(), 370 + 83);
        clickClose(*window);
        ASSERT_TRUE(popUpIsAnother(*window));
        EXPECT_EQ(textsInFile(), rest);
    }
    window = popUp();
    ASSERT_TRUE(window);
    clickClose(*window);
    EXPECT_TRUE(nothingComesUp());
    EXPECT_EQ(textsInFile(), "A plai|A plai");
}

TEST_F(Notification, LivesThroughADay)
{
    setPreferences(3, 2, 2); // Every quarter of an hour, for 30 s, again after 3 hours.
    ASSERT_TRUE(start({{{.id = "1", .priority = "low", .repeat = 2}, {.id = "2", .priority = "high", .repeat = 1}},
                       {{.id = "3", .type = "update", .priority = "high", .repeat = 3}}}));
    const auto closesByItself = [this] {
        clock.advance(31s);
        return agent->waitUntilClosed();
    };
    const auto comesWithTheNextTick = [this] {
        clock.advance(15min);
        return popUp().has_value();
    };
    // Morning: the first that came is shown, the other one a tick later, for the only time.
    ASSERT_TRUE(popUp());
    ASSERT_TRUE(closesByItself());
    EXPECT_EQ(cache(), (Entries{"2x1", "1x1"}));
    ASSERT_TRUE(comesWithTheNextTick());
    ASSERT_TRUE(closesByItself());
    EXPECT_EQ(cache(), Entries{"1x1"});

    // Three hours later the low one comes back. The user wants to see it later.
    clock.advance(2h);
    EXPECT_TRUE(nothingComesUp());
    clock.advance(1h);
    std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    click(*window, RemindMeLater);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_EQ(cache(), Entries{"1x1"});

    // Noon: each message once only, looked for every minute. So the low one rests.
    setPreferences(0, 1, 4);
    ASSERT_TRUE(waitUntil([this] { return agent->isLinked(); }));
    announceSettings();
    for (int hour = 0; hour < 4; ++hour) {
        clock.advance(1h);
        EXPECT_TRUE(nothingComesUp());
    }

    // Next morning the feed is asked again, for what is new.
    clock.advance(18h);
    ASSERT_TRUE(waitUntil([this] { return feed.requests().size() == 2; }));
    EXPECT_TRUE(feed.requests().last().value(QLatin1String("line")).toString().contains(QLatin1String("&lastId=2&")));
    ASSERT_TRUE(cacheBecomes({"3x3", "1x1"}));
    clock.advance(61s);
    window = popUp();
    ASSERT_TRUE(window);
    clock.advance(1h);
    EXPECT_TRUE(agent->hasMenu()) << "an update went by itself";
    click(*window, RemindMeLater);
    ASSERT_TRUE(agent->waitUntilClosed());

    // A new session: what the file has kept counts as not shown yet, an hour after it was shown last.
    agent->process().terminate();
    ASSERT_TRUE(waitUntil([this] { return !agent->process().isRunning(); }));
    EXPECT_EQ(cache(), (Entries{"3x3", "1x1"}));
    ASSERT_TRUE(agent->startAndDock());
    clock.advance(2h);
    window = popUp();
    ASSERT_TRUE(window);
    click(*window, DoNotRemindMeLater);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_EQ(cache(), Entries{"1x1"});
    clock.advance(61s);
    ASSERT_TRUE(popUp());
    clock.advance(16s);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_EQ(cache(), Entries{});
}

} // namespace
