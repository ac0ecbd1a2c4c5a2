#include "notify/feed/KivNotificationReceiver.h"
#include "notify/queue/KivNotificationManager.h"
#include "notify/record/DistantFuture.h"
#include "notify/record/KivNotification.h"
#include "notify/rules/KivNotificationProperties.h"
#include "platform/DistributedNotifications.h"
#include "shell/DockSearch.h"
#include "shell/MenuProcedure.h"
#include "shell/ProcessState.h"
#include "shell/link/EventCodes.h"
#include "shell/link/EventHandler.h"
#include "tests/shell/link/EventBuilder.h"
#include "tests/shell/link/FakeAppleEventManager.h"
#include "tests/support/PrivateXServer.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>

// The linker has what starts the program call the tests' main() by the one name, and that find the agent's by the
// other.
extern "C" int __wrap_main(int argumentCount, char **arguments);
extern "C" int __real_main(int argumentCount, char **arguments);

namespace
{

/// What stands at one of the steps that can be seen from outside.
struct Step {
    const char *name;
    bool hasMenu = __menu != nullptr;
    bool hasProcedure = __menu && __menu->getMenuProc() == &__menu_proc;
    bool showsItem = __menu && __menu->statusItem();
    bool hasOwner = __owpsn.highLongOfPSN != 0 || __owpsn.lowLongOfPSN != 0;
    bool knowsItself = __mypsn.highLongOfPSN == 0 && __mypsn.lowLongOfPSN == static_cast<UInt32>(::getpid());
    std::optional<bool> managerHasMenu = std::nullopt; ///< None while the manager is being made.

    bool operator==(const Step &other) const
    {
        return std::string_view(name) == other.name && hasMenu == other.hasMenu && hasProcedure == other.hasProcedure &&
               showsItem == other.showsItem && hasOwner == other.hasOwner && knowsItself == other.knowsItself &&
               managerHasMenu == other.managerHasMenu;
    }
};

std::ostream &operator<<(std::ostream &stream, const Step &step)
{
    return stream << step.name << (step.hasMenu ? ", menu" : "") << (step.hasProcedure ? ", procedure" : "")
                  << (step.showsItem ? ", item" : "") << (step.hasOwner ? ", owner" : "")
                  << (step.knowsItself ? ", itself" : "")
                  << (step.managerHasMenu.value_or(false) ? ", menu with the manager" : "");
}

std::vector<Step> steps;

bool managerHasMenu()
{
    return __menu && KivNotificationManager::sharedInstance().kivMenu() == __menu.get();
}

/// What the event loop does first.
std::function<void()> inTheLoop;

/// Runs the agent as its start does, with the process state of a start.
int runAgent()
{
    steps.clear();
    FakeAppleEventManager::reset();
    __owpsn = {7, 7}; // What has not been cleared.
    __mypsn = {};
    char name[] = "kivmenua";
    char argument[] = "--help";
    char *arguments[] = {name, argument, nullptr};
    return __real_main(2, arguments);
}

} // namespace

// What start-up calls, in the place of the real ones.

void __wait_dock(SleepFunction)
{
    steps.push_back({"wait for the Dock"});
}

std::unique_ptr<DistributedNotifications::Observer>
DistributedNotifications::addObserver(const QString &name,
                                      std::function<void()>) // NOLINT(performance-unnecessary-value-param)
{
    EXPECT_EQ(name, QStringLiteral("KivMunuUpdateSettingsNotification"));
    steps.push_back({"make the manager"});
    return std::make_unique<Observer>();
}

KivNotificationReceiver::KivNotificationReceiver(const KivNotificationProperties &properties, const Bundle &bundle,
                                                 NotificationSink &sink, FeedTiming timing)
    : m_properties(properties)
    , m_bundle(bundle)
    , m_sink(sink)
    , m_timing(timing)
    , m_parser([](const std::shared_ptr<KivNotification> &) {})
{
}

KivNotificationReceiver::~KivNotificationReceiver() = default;

void KivNotificationReceiver::recieveNotifications()
{
    steps.push_back({.name = "start the feed", .managerHasMenu = managerHasMenu()});
}

void KivNotificationReceiver::stop()
{
    steps.push_back({.name = "stop the feed", .managerHasMenu = managerHasMenu()});
}

namespace
{

OSErr noteHandler(const char *name)
{
    steps.push_back({.name = name, .managerHasMenu = managerHasMenu()});
    if (inTheLoop && FakeAppleEventManager::handler) {
        QTimer::singleShot(0, qApp, [] {
            steps.push_back({.name = "run", .managerHasMenu = managerHasMenu()});
            inTheLoop();
        });
    }
    return noErr;
}

/// The agent's life from start to end, once for all tests: some of what it makes it makes once.
class StartUp : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        inTheLoop = [] { QCoreApplication::exit(); };
        FakeAppleEventManager::onHandler = noteHandler;
        status = runAgent();
    }

    static int status;
};

int StartUp::status = -1;

using StartUpDeathTest = testing::Test;

} // namespace

TEST_F(StartUp, GoesStepByStep)
{
    const std::vector<Step> expected{
        {"wait for the Dock", false, false, false, true, false, std::nullopt},
        {"make the manager", true, true, true, false, false, std::nullopt},
        {"start the feed", true, true, true, false, false, true},
        {"install the handler", true, true, true, false, true, true},
        {"run", true, true, true, false, true, true},
        {"remove the handler", true, true, true, false, true, true},
        {"stop the feed", true, true, true, false, true, false},
    };
    EXPECT_EQ(steps, expected);
}

TEST_F(StartUp, ReceivesTheEventsOfTheLinkAndNoOthersUntilTheEnd)
{
    EXPECT_EQ(FakeAppleEventManager::calls,
              (std::vector<std::string>{"AEInstallEventHandler kvmc kvme", "AERemoveEventHandler kvmc kvme"}));
    EXPECT_EQ(FakeAppleEventManager::lastInstalled, &__ae_handler);
    EXPECT_EQ(FakeAppleEventManager::handler, nullptr) << "another one was removed";
}

TEST_F(StartUp, ReleasesTheMenuAtTheEndAndEndsWithStatusZero)
{
    EXPECT_EQ(__menu, nullptr);
    EXPECT_EQ(KivNotificationManager::sharedInstance().kivMenu(), nullptr);
    EXPECT_EQ(status, 0);
}

// A process of its own, from which an end without teardown can be told.
TEST_F(StartUpDeathTest, EndsWithoutTeardownAtTheServicesWord)
{
    const auto quitAtTheServicesWord = [] {
        FakeAppleEventManager::onHandler = [](const char *name) {
            std::fputs(name, stderr);
            return noteHandler(name);
        };
        inTheLoop = [] {
            __owpsn = __mypsn;
            EventBuilder builder;
            builder.command(kMenuEvtQuit).sender(__mypsn);
            __ae_handler(builder.event(), nullptr, nullptr);
            QCoreApplication::exit(3);
        };
        return runAgent();
    };
    EXPECT_EXIT(std::_Exit(quitAtTheServicesWord()), testing::ExitedWithCode(0),
                testing::AllOf(testing::HasSubstr("install the handler"), testing::Not(testing::HasSubstr("remove"))));
}

// With a home of its own.
TEST_F(StartUpDeathTest, AsksTheFeedForNewMessagesWhenItHasReadTheOldOnes)
{
    const auto startWithManyMessages = [] {
        const QTemporaryDir home;
        qputenv("HOME", home.path().toLocal8Bit());
        QVariantList list;
        for (int id = 1; id <= 100; ++id) {
            KivNotification record;
            record.setMessageId(QString::number(id));
            record.setMaxDate(distantFuture());
            record.setContentHeight(60);
            record.setMessageText(QString(qsizetype{CacheWriter::maxBytesAtOnce / 50}, u'x'));
            list.append(record.exportToDictionary());
        }
        EXPECT_TRUE(NotificationCache(home.path()).write(list));
        FakeAppleEventManager::onHandler = noteHandler;
        std::string namesAtTheFeed;
        QTimer look;
        look.callOnTimeout([&] {
            const auto isTheFeed = [](const Step &step) { return step.name == std::string_view("start the feed"); };
            if (std::ranges::any_of(steps, isTheFeed)) {
                for (const Step &step : steps) {
                    namesAtTheFeed += std::string(step.name) + ", ";
                }
                namesAtTheFeed += KivNotificationProperties::sharedInstance().lastMesID().toStdString();
                QCoreApplication::exit();
            }
        });
        inTheLoop = [&] { look.start(0); };
        const int result = runAgent();
        std::fputs(namesAtTheFeed.c_str(), stderr);
        return result;
    };
    EXPECT_EXIT(std::_Exit(startWithManyMessages()), testing::ExitedWithCode(0),
                testing::AllOf(testing::HasSubstr("install the handler, "), testing::HasSubstr("start the feed, 100")));
}

int __wrap_main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    const QTemporaryDir home;
    PrivateXServer server;
    if (!server.start()) {
        return EXIT_FAILURE;
    }
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("DISPLAY", server.display().toLocal8Bit());
    qputenv("XAUTHORITY", server.authority().toLocal8Bit());
    qunsetenv("QT_QPA_PLATFORM");
    return RUN_ALL_TESTS();
}
