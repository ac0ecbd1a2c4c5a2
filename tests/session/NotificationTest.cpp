#include "tests/session/support/DesktopSettings.h"
#include "tests/session/support/HostileClient.h"
#include "tests/session/support/OtherWindow.h"
#include "tests/session/support/Service.h"
#include "tests/session/support/SessionWithMessages.h"
#include "tests/support/ProcessMemory.h"
#include "tests/support/SmallDisk.h"

#include <QCoreApplication>
#include <QDir>

#include <gtest/gtest.h>

#include <csignal>
#include <unistd.h>

namespace
{

using namespace std::chrono_literals;

using Entries = MessageCache::Entries;

class Notification : public SessionWithMessages
{
protected:
    static void SetUpTestSuite() { whyNoDisk = SmallDisk::unshareMounts(); }

    static QString whyNoDisk; ///< Empty when there can be a small one.
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
    EXPECT_TRUE(waitUntil([this] { return feed.requests().size() == 1; }));
    EXPECT_TRUE(agent->standardError().isEmpty()) << agent->standardError().constData();
}

class NotificationWithoutRandR : public Notification
{
protected:
    NotificationWithoutRandR() { server = Desktop::Server::WithoutRandR; }
};

TEST_F(NotificationWithoutRandR, AppearsInTheCornerOfAllThatThereIs)
{
    ASSERT_TRUE(start({{{.id = "1"}}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    EXPECT_EQ(window->geometry, corner(*window, {1280, 800}));
    EXPECT_TRUE(agent->openMenu());
}

TEST_F(Notification, FromTheFeedAppearsThoughTheSessionIgnoresItsChildren)
{
    QProcess &process = agent->process().process();
    process.setChildProcessModifier([before = process.childProcessModifier()] {
        before();
        std::signal(SIGCHLD, SIG_IGN);
    });
    ASSERT_TRUE(start({{{.id = "1"}}}));
    EXPECT_TRUE(popUp());
    EXPECT_TRUE(agent->standardError().isEmpty()) << agent->standardError().constData();
}

TEST_F(Notification, IsKeptWhenTheNextOneCannotBeJudged)
{
    // A version without a second component raises; what came before is in the queue, and the agent goes on.
    ASSERT_TRUE(start({{{.id = "1"}, {.id = "2"}, {.id = "3", .minVersion = "3"}, {.id = "4"}}}));
    ASSERT_TRUE(popUp());
    EXPECT_TRUE(waitUntil([this] { return agent->standardError().contains("no second component"); }));
    EXPECT_TRUE(cacheFile().becomes({"1x1", "2x1"}));

    clock.advance(31s);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_TRUE(cacheFile().becomes({"2x1"}));
    clock.advance(15min);
    EXPECT_TRUE(popUp());
}

TEST_F(Notification, StaysWhenNobodyReadsTheWarningAboutAnother)
{
    QProcess &process = agent->process().process();
    process.setChildProcessModifier([before = process.childProcessModifier()] {
        before();
        std::signal(SIGPIPE, SIG_DFL);
        int ends[2];
        if (::pipe(ends) == 0) {
            ::dup2(ends[1], STDERR_FILENO);
            ::close(ends[0]);
            ::close(ends[1]);
        }
    });
    ASSERT_TRUE(start({{{.id = "1"}, {.id = "2"}, {.id = "3", .minVersion = "3"}}}));
    ASSERT_TRUE(popUp());
    EXPECT_TRUE(cacheFile().becomes({"1x1", "2x1"}));
    clock.advance(31s);
    ASSERT_TRUE(agent->waitUntilClosed());
    EXPECT_TRUE(cacheFile().becomes({"2x1"}));
    EXPECT_TRUE(agent->process().isRunning());
}

TEST_F(Notification, LeavesQueueAndFileAsItsButtonSays)
{
    ASSERT_TRUE(start({{{.id = "1", .repeat = 2}, {.id = "2", .repeat = 3}, {.id = "3", .repeat = 2}}}));
    std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    EXPECT_TRUE(cacheFile().becomes({"1x2", "2x3", "3x2"}));

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

TEST_F(Notification, MakesRoomForTheNextWhenAnotherProgramDestroysItsWindow)
{
    ASSERT_TRUE(start({{{.id = "1", .type = "update", .priority = "high"}, {.id = "2", .type = "update"}}}));
    const std::optional<XWindow> first = popUp();
    ASSERT_TRUE(first);
    HostileClient destroyer(desktop.server());
    destroyer.destroy(first->id);
    ASSERT_TRUE(agent->waitUntilClosed());
    clock.advance(24h);
    EXPECT_TRUE(popUp());
    EXPECT_TRUE(agent->openMenu());
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

TEST_F(Notification, BringsNoMachineCodeOfItsOwnForItsPatterns)
{
    ASSERT_TRUE(start({{{.id = "1", .text = "<p style='font-size: 12px'>A notice.</p>"}}}));
    ASSERT_TRUE(popUp());
    EXPECT_FALSE(ProcessMemory::hasCodeThatItWrote(agent->pid()));
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

TEST_F(Notification, KeepsItsButtonsOnTheScreenWhenThatShrinks)
{
    ASSERT_TRUE(start({{{.id = "1", .text = QByteArray("line\n").repeated(45)}}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    EXPECT_GT(window->geometry.height(), 600);
    ASSERT_TRUE(desktop.switchTo({800, 600}));
    const QRect wanted(800 - 10 - window->geometry.width(), 30, window->geometry.width(), 560);
    EXPECT_TRUE(waitUntil([&] {
        const QList<XWindow> windows = agent->freeWindows();
        return windows.size() == 1 && windows.first().id == window->id && windows.first().geometry == wanted;
    }));
    XWindow shrunk = *window;
    shrunk.geometry = wanted;
    click(shrunk, DoNotRemindMeLater);
    EXPECT_TRUE(agent->waitUntilClosed());
}

TEST_F(Notification, KeepsItsSizeInPointsWhenTheScreensScaleChanges)
{
    DesktopSettings settings(desktop.server());
    ASSERT_TRUE(start({{{.id = "1", .text = QByteArray("line\n").repeated(15)}}}));
    const std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    for (const int scale : {2, 1, 2, 1}) {
        settings.setDotsPerInch(96 * scale);
        const QSize size = window->geometry.size() * scale;
        const QRect wanted(QPoint(1280 - 10 * scale - size.width(), 30 * scale), size);
        EXPECT_TRUE(waitUntil([&] {
            const QList<XWindow> windows = agent->freeWindows();
            return windows.size() == 1 && windows.first().id == window->id && windows.first().geometry == wanted;
        })) << scale
            << ": " << agent->freeWindows().value(0).geometry.x() << ' '
            << agent->freeWindows().value(0).geometry.width() << ' ' << agent->freeWindows().value(0).geometry.height();
    }
    click(*window, DoNotRemindMeLater);
    EXPECT_TRUE(agent->waitUntilClosed());
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
    OtherWindow editor(desktop.server(), {100, 300, 300, 200});
    editor.takeKeyboard();
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
    const SmallDisk disk(cacheFile().folder());
    const QByteArray longText = QByteArray("Words enough for more than a page of the disk. ").repeated(200);
    ASSERT_TRUE(start({{{.id = "1"}, {.id = "2"}, {.id = "3"}, {.id = "4", .priority = "low", .text = longText}}}));
    std::optional<XWindow> window = popUp();
    ASSERT_TRUE(window);
    ASSERT_TRUE(cacheFile().becomes({"1x1", "2x1", "3x1", "4x1"}));
    const QByteArray before = cacheFile().content();
    const auto isUntouched = [&] {
        return cacheFile().content() == before &&
               QDir(cacheFile().folder()).entryList(QDir::Files | QDir::Hidden) ==
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
    const QByteArray said = agent->standardError();
    EXPECT_EQ(said.count('\n'), 2) << said.constData();
    EXPECT_EQ(said.count("cannot save the messages"), 2) << "one line for each cause: " << said.constData();
}

TEST_F(Notification, IsAskedForAgainWhenThereWasNoRoomForIt)
{
    if (!whyNoDisk.isEmpty()) {
        GTEST_SKIP() << "no disk of its own: " << whyNoDisk.toStdString();
    }
    setPreferences(1, 4, 0);
    const SmallDisk disk(cacheFile().folder());
    disk.fill();
    const QByteArray longText = QByteArray("Words enough for more than a page of the disk. ").repeated(200);
    ASSERT_TRUE(start({{{.id = "1"}, {.id = "2", .text = longText}}}));
    ASSERT_TRUE(popUp());
    EXPECT_TRUE(waitUntil([this] { return agent->standardError().contains("cannot save the messages"); }));
    EXPECT_EQ(SettingsProgram::lastMessageId(desktop), QLatin1String("0"));
    agent->process().kill();
    EXPECT_TRUE(cacheFile().content().isEmpty());

    ASSERT_TRUE(agent->startAndDock());
    ASSERT_TRUE(waitUntil([this] { return feed.requests().size() == 2; }));
    EXPECT_TRUE(feed.requests().last().value(QLatin1String("line")).toString().contains(QLatin1String("&lastId=0&")));
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
        for (const std::string &text : cacheFile().texts()) {
            texts.append(QString::fromStdString(text).left(6));
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
    ASSERT_TRUE(cacheFile().becomes({"3x3", "1x1"}));
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
