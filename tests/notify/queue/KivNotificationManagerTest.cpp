#include "notify/queue/KivNotificationManager.h"

#include "notify/popup/KivNotificationWindow.h"
#include "notify/queue/QueueLimits.h"
#include "notify/record/DistantFuture.h"
#include "notify/record/KivNotification.h"
#include "notify/rules/KivNotificationProperties.h"
#include "platform/Bundle.h"
#include "platform/MainScreen.h"
#include "platform/data/PropertyList.h"
#include "platform/data/UtcTime.h"
#include "platform/linux/include/XConnection.h"
#include "tests/support/BusPeer.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FileChanges.h"
#include "tests/support/LogLines.h"
#include "tests/support/WaitUntil.h"

#include <QApplication>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QTemporaryDir>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <limits>
#include <optional>
#include <sys/stat.h>
#include <thread>

namespace
{

using namespace std::chrono_literals;

using Record = std::shared_ptr<KivNotification>;
using Ids = std::vector<std::string>;

const QDateTime noon(QDate(2024, 3, 1), QTime(12, 0), inUtc);
const QDateTime epoch = QDateTime::fromMSecsSinceEpoch(0, inUtc);

Record record(const char *id, std::int32_t priority = 1, std::uint32_t repeat = 1)
{
    auto result = std::make_shared<KivNotification>();
    result->setMessageId(QString::fromLatin1(id));
    result->setMessagePriority(priority);
    result->setMessageRepeat(repeat);
    result->setMaxDate(distantFuture());
    result->setMessageText(QStringLiteral("Text of %1").arg(QLatin1String(id)));
    return result;
}

Record hint(const char *text)
{
    auto result = std::make_shared<KivNotification>();
    result->setMessageText(QString::fromLatin1(text));
    return result;
}

/// The longest one that there can be in a file: 64 kB of what takes five bytes each in XML.
Record longHint()
{
    const Record result = hint("");
    result->setContentHeight(60); // Not to be measured.
    result->setMessageText(QString(65'536, u'&'));
    return result;
}

QVariantMap with(const QString &key, const QVariant &value, const char *id)
{
    QVariantMap dictionary = record(id)->exportToDictionary();
    dictionary.insert(key, value);
    return dictionary;
}

class KivNotificationManagerTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        bus = new PrivateBus;
        ASSERT_TRUE(bus->start());
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus->address().toUtf8());
    }
    static void TearDownTestSuite() { delete std::exchange(bus, nullptr); }

    KivNotificationManagerTest()
    {
        const QVariantMap info{{QStringLiteral("KIVBuildVersion"), QStringLiteral("3.2.1")},
                               {QStringLiteral("KIVBuildDate"), QStringLiteral("20110520")}};
        EXPECT_TRUE(
            PropertyList::writeFile(home.filePath(QStringLiteral("Info.plist")), info, PropertyList::Writing::InPlace));
        bundle.emplace(home.path());
    }

    ~KivNotificationManagerTest() override
    {
        onClock = nullptr;
        if (manager && manager->notificationWindow()) {
            QPointer window(manager->notificationWindow());
            window->setDelegate(nullptr);
            window->close();
            EXPECT_TRUE(waitUntil([&] { return !window; }));
        }
    }

    /// The agent's start.
    KivNotificationManager &start()
    {
        const auto clock = [this] {
            if (const auto call = onClock) { // It may put another one in its place.
                call();
            }
            return now;
        };
        const UserDatabase nobody{.loginName = [] { return std::nullopt; },
                                  .groupMembers = [](const std::string &) { return std::vector<std::string>(); }};
        manager.reset();
        properties.emplace(*bundle, home.path(), QString(), nobody, clock);
        manager.emplace(*properties, home.path(), clock);
        return *manager;
    }

    void setPreferences(std::int32_t show, std::int32_t close, std::int32_t repeat = 0)
    {
        QVariantMap preferences{{QStringLiteral("KivNotificationShowTimeout"), show},
                                {QStringLiteral("KivNotificationCloseTimeout"), close},
                                {QStringLiteral("KivNotificationRepeatTimeout"), repeat},
                                {QStringLiteral("KivNotificationLastMessId"), QStringLiteral("0")}};
        for (const char *what :
             {"News", "Notices", "Updates", "Warnings", "LowPriority", "MediumPriority", "HighPriority"}) {
            preferences.insert(QStringLiteral("KivNotificationShow") + QLatin1String(what), true);
        }
        ASSERT_TRUE(QDir().mkpath(QFileInfo(preferencesFile()).path()));
        ASSERT_TRUE(PropertyList::writeFile(preferencesFile(), preferences, PropertyList::Writing::InPlace));
    }

    [[nodiscard]] QString cacheFile() const { return NotificationCache(home.path()).path(); }
    [[nodiscard]] bool hasFile() const { return QFileInfo::exists(cacheFile()); }
    void putIntoFile(const QVariantList &list) const { ASSERT_TRUE(NotificationCache(home.path()).write(list)); }
    [[nodiscard]] Ids idsInFile() const
    {
        Ids ids;
        for (const QVariant &entry : PropertyList::readFile(cacheFile()).toList()) {
            ids.push_back(entry.toMap().value(QStringLiteral("messageId")).toString().toStdString());
        }
        return ids;
    }
    [[nodiscard]] QString preferencesFile() const
    {
        return home.filePath(QStringLiteral("Library/Preferences/com.tamborel.kivmenua.plist"));
    }
    /// The last message id that the next start will find.
    [[nodiscard]] std::string storedId() const
    {
        const QVariantMap preferences = PropertyList::readFile(preferencesFile()).toMap();
        return preferences.value(QStringLiteral("KivNotificationLastMessId")).toString().toStdString();
    }
    [[nodiscard]] ino_t inode() const
    {
        struct stat status = {};
        EXPECT_EQ(::stat(QFile::encodeName(cacheFile()).constData(), &status), 0);
        return status.st_ino;
    }

    [[nodiscard]] static Ids idsFrom(int first, int last)
    {
        Ids ids;
        for (int id = first; id <= last; ++id) {
            ids.push_back(std::to_string(id));
        }
        return ids;
    }
    /// In one delivery. A hundred of them are more than is written at once.
    void deliverLongOnes(int first, int last)
    {
        const NotificationSink::Delivery delivery(*manager);
        for (const std::string &id : idsFrom(first, last)) {
            const Record one = record(id.c_str());
            one->setContentHeight(60); // Not to be measured.
            one->setMessageText(QString(static_cast<qsizetype>(CacheWriter::maxBytesAtOnce / 90), u'x'));
            manager->enqueueNotification(one);
        }
    }

    [[nodiscard]] Ids queued() const
    {
        Ids ids;
        for (const Record &each : manager->notifications().records()) {
            ids.push_back(each->messageId().toStdString());
        }
        return ids;
    }

    [[nodiscard]] KivNotificationWindow *window() const { return manager->notificationWindow(); }
    /// The id of the message that is shown; "none" when none is.
    [[nodiscard]] std::string shown() const
    {
        return window() ? window()->notification()->messageId().toStdString() : "none";
    }
    [[nodiscard]] static int popUps()
    {
        int count = 0;
        for (const QWidget *widget : QApplication::topLevelWidgets()) {
            count += widget->isVisible() && dynamic_cast<const KivNotificationWindow *>(widget) ? 1 : 0;
        }
        return count;
    }
    /// After how many seconds the pop-up closes by itself; -1 for never.
    [[nodiscard]] int secondsToClose() const
    {
        const QTimer *timer = window()->findChild<QTimer *>();
        return timer ? timer->interval() / 1000 : -1;
    }

    static PrivateBus *bus;

    const QTemporaryDir home;
    QDateTime now = noon;
    std::function<void()> onClock; ///< Called each time that somebody looks at the clock.
    std::optional<Bundle> bundle;
    std::optional<KivNotificationProperties> properties;
    std::optional<KivNotificationManager> manager;
};

PrivateBus *KivNotificationManagerTest::bus = nullptr;

// Accepting.

TEST_F(KivNotificationManagerTest, ShowsTheFirstRecordAtOnceAndDoesNotSaveIt)
{
    start().enqueueNotification(record("1"));
    EXPECT_EQ(shown(), "1");
    EXPECT_EQ(queued(), Ids{"1"}) << "a record that is shown stays queued";
    EXPECT_FALSE(hasFile());
}

TEST_F(KivNotificationManagerTest, AsksTheRepeatRulesBeforeItShowsTheFirstRecord)
{
    const Record first = record("1");
    first->setLastShowDate(now.addSecs(-60));
    start().enqueueNotification(first);
    EXPECT_EQ(shown(), "none");
    EXPECT_EQ(queued(), Ids{"1"});
    EXPECT_FALSE(hasFile());
}

TEST_F(KivNotificationManagerTest, SavesTheQueueWithEveryLaterRecord)
{
    start().enqueueNotification(record("1"));
    manager->enqueueNotification(record("2", 2));
    EXPECT_EQ(idsInFile(), (Ids{"2", "1"}));
    manager->enqueueNotification(record("3"));
    EXPECT_EQ(idsInFile(), (Ids{"2", "1", "3"}));
    EXPECT_EQ(shown(), "1");
    EXPECT_EQ(popUps(), 1);
}

TEST_F(KivNotificationManagerTest, SavesTheOnlyRecordWhileAPopUpIsOpen)
{
    start().displayNotification(record("9")); // Which is not queued.
    manager->enqueueNotification(record("1"));
    EXPECT_EQ(idsInFile(), Ids{"1"});
    EXPECT_EQ(shown(), "9");
}

TEST_F(KivNotificationManagerTest, DropsWhatIsNotForThisInstallationButRemembersItsId)
{
    const Record forOthers = record("41");
    forOthers->setProductCode(0);
    start().enqueueNotification(forOthers);
    EXPECT_EQ(queued(), Ids{});
    EXPECT_EQ(shown(), "none");
    EXPECT_FALSE(hasFile());
    EXPECT_EQ(properties->lastMesID(), QStringLiteral("41"));
}

TEST_F(KivNotificationManagerTest, RemembersTheHighestIdByItsNumber)
{
    start();
    const auto lastAfter = [this](const char *id) {
        manager->enqueueNotification(record(id));
        return properties->lastMesID().toStdString();
    };
    EXPECT_EQ(lastAfter("9"), "9");
    EXPECT_EQ(lastAfter("10"), "10") << "as texts, 9 comes after 10";
    EXPECT_EQ(lastAfter("8"), "10");
    EXPECT_EQ(lastAfter("10b"), "10") << "equal by the number";
    EXPECT_EQ(lastAfter("no number"), "10");
    EXPECT_EQ(lastAfter("5000000000"), "5000000000");
    EXPECT_EQ(lastAfter("5000000001"), "5000000001");
}

TEST_F(KivNotificationManagerTest, TakesALastIdThatIsNoNumberAsZero)
{
    start();
    properties->saveLastMessID(QStringLiteral("latest"));
    manager->enqueueNotification(record("0"));
    EXPECT_EQ(properties->lastMesID(), QStringLiteral("latest"));
    manager->enqueueNotification(record("1"));
    EXPECT_EQ(properties->lastMesID(), QStringLiteral("1"));
}

TEST_F(KivNotificationManagerTest, KeepsTheQueuedRecordWhenTheFeedSendsItAgain)
{
    const Record first = record("1");
    start().enqueueNotification(first);
    const Record again = record("1", 2);
    again->setWasDisplayed(true);
    manager->enqueueNotification(again);
    ASSERT_EQ(queued(), Ids{"1"});
    EXPECT_EQ(manager->notifications().records().front(), first);
    EXPECT_TRUE(first->wasDisplayed());
    EXPECT_FALSE(again->wasDisplayed()) << "every record that comes has not been displayed";
}

TEST_F(KivNotificationManagerTest, PassesOnWhatTheRelevanceThrowsAndGoesOn)
{
    const Record broken = record("1");
    broken->setMinVersion(QStringLiteral("3"));
    start();
    EXPECT_THROW(manager->enqueueNotification(broken), std::out_of_range);
    EXPECT_EQ(queued(), Ids{});
    manager->enqueueNotification(record("2"));
    EXPECT_EQ(shown(), "2");
}

// Deliveries.

TEST_F(KivNotificationManagerTest, SavesADeliveryOnceAtItsEndAndThenItsLastId)
{
    constexpr int messages = 1000;
    setPreferences(0, 0);
    start();
    ASSERT_TRUE(QDir().mkpath(QFileInfo(cacheFile()).path()));
    FileChanges changes({cacheFile(), preferencesFile()});
    Ids sent;
    {
        const NotificationSink::Delivery delivery(*manager);
        for (int id = 1; id <= messages; ++id) {
            sent.push_back(std::to_string(id));
            manager->enqueueNotification(record(sent.back().c_str()));
            ASSERT_EQ(properties->lastMesID().toStdString(), sent.back()) << "what follows is compared with it";
        }
        EXPECT_EQ(changes.takeNames(), QByteArrayList());
    }
    ASSERT_TRUE(waitUntil([this] { return shown() == "1"; })) << "the first is shown at once";
    manager->saveUnsavedRecords();
    EXPECT_EQ(changes.takeNames(),
              (QByteArrayList{"notifications.plist", "com.tamborel.kivmenua.plist", "notifications.plist"}))
        << "and once more what has been shown";
    EXPECT_EQ(idsInFile(), sent);
    EXPECT_EQ(storedId(), "1000");
}

TEST_F(KivNotificationManagerTest, KeepsNobodyWaitingWhileItSavesALongQueue)
{
    setPreferences(0, 0);
    start();
    std::string whenShown;
    Ids savedWhenShown;
    onClock = [&] {
        if (window()) {
            whenShown = storedId();
            savedWhenShown = idsInFile();
            onClock = nullptr;
        }
    };
    int turns = 0;
    QTimer turn;
    turn.callOnTimeout([&] { turns += shown() == "none" ? 1 : 0; });
    turn.start(0);
    deliverLongOnes(1, 100);
    EXPECT_EQ(shown(), "none") << "before the id is stored, which is stored behind the queue";
    EXPECT_EQ(storedId(), "0");
    ASSERT_TRUE(waitUntil([&] { return !whenShown.empty(); }));
    EXPECT_GT(turns, 0);
    EXPECT_EQ(whenShown, "100");
    EXPECT_EQ(savedWhenShown, idsFrom(2, 100));
    EXPECT_TRUE(waitUntil([&] { return idsInFile() == idsFrom(1, 100); })) << "nothing was the matter with it";
}

TEST_F(KivNotificationManagerTest, LeavesTheSavingOfAThousandMessagesToAnotherThread)
{
    setPreferences(0, 0);
    start();
    std::optional<NotificationSink::Delivery> delivery(std::in_place, *manager);
    for (const std::string &id : idsFrom(1, 1000)) {
        const Record one = record(id.c_str());
        one->setContentHeight(60); // Not to be measured.
        one->setMessageText(QString(1024, u'x'));
        manager->enqueueNotification(one);
    }
    delivery.reset();
    EXPECT_EQ(storedId(), "0") << "which is stored behind the queue";
    // Without a turn of this thread's event loop.
    const QDeadlineTimer patience(30s);
    while (idsInFile() != idsFrom(2, 1000) && !patience.hasExpired()) {
        std::this_thread::yield();
    }
    EXPECT_EQ(idsInFile(), idsFrom(2, 1000));
    EXPECT_EQ(storedId(), "0");
    EXPECT_TRUE(waitUntil([&] { return storedId() == "1000" && shown() == "1"; }));
}

TEST_F(KivNotificationManagerTest, SavesBehindALongQueueWhatComesMeanwhile)
{
    setPreferences(0, 0);
    start();
    deliverLongOnes(1, 100);
    deliverLongOnes(101, 120);
    manager->enqueueNotification(record("121"));
    EXPECT_EQ(storedId(), "0");
    EXPECT_TRUE(waitUntil([&] { return idsInFile() == idsFrom(1, 121); }));
    EXPECT_EQ(shown(), "1");
    EXPECT_EQ(storedId(), "121");
}

TEST_F(KivNotificationManagerTest, StoresNoIdOfADeliveryThatGoesOnWhileALongQueueIsSaved)
{
    setPreferences(0, 0);
    start();
    deliverLongOnes(1, 100);
    {
        const NotificationSink::Delivery delivery(*manager);
        manager->enqueueNotification(record("101"));
        ASSERT_TRUE(waitUntil([&] { return idsInFile() == idsFrom(2, 100); }));
        QCoreApplication::sendPostedEvents();
        EXPECT_EQ(storedId(), "0");
        EXPECT_EQ(shown(), "none");
    }
    EXPECT_TRUE(waitUntil([&] { return idsInFile() == idsFrom(1, 101) && storedId() == "101"; }));
    EXPECT_EQ(shown(), "1");
}

TEST_F(KivNotificationManagerTest, HasSavedALongQueueWholeWhenTheAgentEnds)
{
    setPreferences(0, 0);
    start();
    deliverLongOnes(1, 100);
    manager->enqueueNotification(record("101"));
    manager->saveUnsavedRecords();
    EXPECT_EQ(shown(), "none") << "there is nobody any more to see it";
    EXPECT_EQ(idsInFile(), idsFrom(1, 101));
    EXPECT_EQ(storedId(), "101");
}

TEST_F(KivNotificationManagerTest, TriesALongQueueThatCouldNotBeSavedAgain)
{
    setPreferences(0, 0);
    start();
    const QString inTheWay = home.filePath(QStringLiteral("Library/Caches"));
    ASSERT_TRUE(QFile(inTheWay).open(QIODevice::WriteOnly));
    deliverLongOnes(1, 100);
    ASSERT_TRUE(waitUntil([this] { return shown() == "1"; }));
    EXPECT_EQ(storedId(), "0");
    ASSERT_TRUE(QFile::remove(inTheWay));
    window()->remindMeLaterPressed();
    EXPECT_TRUE(waitUntil([&] { return idsInFile() == idsFrom(1, 100) && storedId() == "100"; }));
}

TEST_F(KivNotificationManagerTest, HasStoredTheIdBeforeItShowsAMessage)
{
    setPreferences(0, 0);
    start();
    std::string whenShown;
    Ids savedWhenShown;
    const auto deliver = [&](std::initializer_list<const char *> ids) {
        const NotificationSink::Delivery delivery(*manager);
        for (const char *id : ids) {
            manager->enqueueNotification(record(id));
        }
        // The clock tells when it is shown, with its pop-up there.
        onClock = [&] {
            if (window()) {
                whenShown = storedId();
                savedWhenShown = idsInFile();
                onClock = nullptr;
            }
        };
    };
    deliver({"1"});
    EXPECT_EQ(shown(), "1");
    EXPECT_EQ(whenShown, "1");
    EXPECT_EQ(savedWhenShown, Ids{});
    window()->onDontRemindMeButton();
    ASSERT_EQ(queued(), Ids{});

    deliver({"2", "3", "4"});
    EXPECT_EQ(shown(), "2");
    EXPECT_EQ(whenShown, "4");
    EXPECT_EQ(savedWhenShown, (Ids{"3", "4"})) << "what kills the agent would come again, or the others would not";
    EXPECT_EQ(idsInFile(), (Ids{"2", "3", "4"})) << "nothing was the matter with it";
}

TEST_F(KivNotificationManagerTest, SavesAtTheEndAFirstMessageThatIsNotSavedYetAndNoHints)
{
    start().showNotificationInstantly(hint("a"));
    manager->saveUnsavedRecords();
    EXPECT_FALSE(hasFile()) << "a hint is for the moment";
    window()->onDontRemindMeButton();

    manager->enqueueNotification(record("1"));
    manager->showNotificationInstantly(hint("b"));
    ASSERT_EQ(idsInFile(), Ids{});
    manager->saveUnsavedRecords();
    EXPECT_EQ(idsInFile(), Ids{"1"});
    EXPECT_EQ(queued(), (Ids{"", "1"}));
}

TEST_F(KivNotificationManagerTest, LeavesAFileAtTheEndThatHoldsEveryMessage)
{
    start().enqueueNotification(record("1"));
    manager->enqueueNotification(record("2"));
    window()->remindMeLaterPressed();
    FileChanges changes({cacheFile()});
    manager->showNotificationInstantly(hint("a"));
    manager->saveUnsavedRecords();
    window()->setDelegate(nullptr);
    window()->close();
    start();
    manager->saveUnsavedRecords();
    EXPECT_EQ(changes.takeNames(), QByteArrayList()) << "nor after it has only been read";
}

TEST_F(KivNotificationManagerTest, TriesAgainAtTheEndWhatItCouldNotSave)
{
    setPreferences(0, 0);
    start();
    const QString inTheWay = home.filePath(QStringLiteral("Library/Caches"));
    ASSERT_TRUE(QFile(inTheWay).open(QIODevice::WriteOnly));
    manager->enqueueNotification(record("1"));
    manager->enqueueNotification(record("2"));
    ASSERT_TRUE(QFile::remove(inTheWay));
    manager->saveUnsavedRecords();
    EXPECT_EQ(idsInFile(), (Ids{"1", "2"}));
}

TEST_F(KivNotificationManagerTest, TriesAgainAtTheEndToSaveWhatCameBehindTheMessageOnTheScreen)
{
    setPreferences(0, 0);
    start().enqueueNotification(record("1"));
    manager->enqueueNotification(record("2"));
    const QString folder = home.filePath(QStringLiteral("Library/Caches"));
    ASSERT_TRUE(QDir(folder).removeRecursively());
    ASSERT_TRUE(QFile(folder).open(QIODevice::WriteOnly));
    manager->enqueueNotification(record("3"));
    ASSERT_TRUE(QFile::remove(folder));
    manager->saveUnsavedRecords();
    EXPECT_EQ(idsInFile(), (Ids{"1", "2", "3"}));
}

TEST_F(KivNotificationManagerTest, WritesNothingAtTheEndThatOnlyTellsWhenAMessageWasShown)
{
    setPreferences(0, 0);
    start().enqueueNotification(record("1"));
    manager->enqueueNotification(record("2"));
    window()->remindMeLaterPressed();
    now = now.addDays(1);
    manager->forceNotification();
    ASSERT_TRUE(window());
    FileChanges changes({cacheFile()});
    manager->saveUnsavedRecords();
    EXPECT_EQ(changes.takeNames(), QByteArrayList());
}

TEST_F(KivNotificationManagerTest, StoresNoIdAtTheEndInTheMiddleOfADelivery)
{
    setPreferences(0, 0);
    start().enqueueNotification(record("1"));
    manager->enqueueNotification(record("2"));
    const NotificationSink::Delivery delivery(*manager);
    manager->enqueueNotification(record("4"));
    manager->saveUnsavedRecords();
    EXPECT_EQ(idsInFile(), (Ids{"1", "2", "4"}));
    EXPECT_EQ(storedId(), "2") << "the third would not be sent again";
}

TEST_F(KivNotificationManagerTest, TakesADeliveryWithinAnotherAsAPartOfIt)
{
    setPreferences(0, 0);
    start();
    {
        const NotificationSink::Delivery delivery(*manager);
        {
            const NotificationSink::Delivery part(*manager);
            manager->enqueueNotification(record("1"));
            manager->enqueueNotification(record("2"));
        }
        EXPECT_FALSE(hasFile());
        EXPECT_EQ(storedId(), "0");
    }
    EXPECT_EQ(idsInFile(), (Ids{"1", "2"}));
    EXPECT_EQ(storedId(), "2");
}

TEST_F(KivNotificationManagerTest, DoesNotSaveADeliveryOfTheFirstRecordAlone)
{
    setPreferences(0, 0);
    start();
    {
        const NotificationSink::Delivery delivery(*manager);
        manager->enqueueNotification(record("1"));
    }
    EXPECT_EQ(shown(), "1");
    EXPECT_FALSE(hasFile());
    EXPECT_EQ(storedId(), "1");
}

TEST_F(KivNotificationManagerTest, SavesWhatADeliveryHadBroughtWhenAnExceptionEndedIt)
{
    setPreferences(0, 0);
    start();
    const auto deliver = [this] {
        const NotificationSink::Delivery delivery(*manager);
        manager->enqueueNotification(record("1"));
        manager->enqueueNotification(record("2"));
        throw std::runtime_error("no document");
    };
    EXPECT_THROW(deliver(), std::runtime_error);
    EXPECT_EQ(idsInFile(), (Ids{"1", "2"}));
    EXPECT_EQ(storedId(), "2");
    manager->enqueueNotification(record("3"));
    EXPECT_EQ(idsInFile(), (Ids{"1", "2", "3"})) << "the delivery has no end";
}

TEST_F(KivNotificationManagerTest, StoresNoIdOfMessagesThatItCouldNotSaveUntilItCan)
{
    setPreferences(0, 0);
    start();
    const QString inTheWay = home.filePath(QStringLiteral("Library/Caches"));
    ASSERT_TRUE(QFile(inTheWay).open(QIODevice::WriteOnly));
    {
        const NotificationSink::Delivery delivery(*manager);
        manager->enqueueNotification(record("1"));
        manager->enqueueNotification(record("2"));
    }
    EXPECT_EQ(storedId(), "0");
    const Record forOthers = record("3");
    forOthers->setProductCode(0);
    manager->enqueueNotification(forOthers);
    EXPECT_EQ(storedId(), "0");

    ASSERT_TRUE(QFile::remove(inTheWay));
    window()->onCloseButton();
    EXPECT_EQ(idsInFile(), Ids{"2"});
    EXPECT_EQ(storedId(), "3");
}

TEST_F(KivNotificationManagerTest, NeverKeepsMoreThanAThousandRecords)
{
    setPreferences(0, 0);
    start();
    {
        const NotificationSink::Delivery delivery(*manager);
        for (int i = 1; i <= 1002; ++i) {
            manager->enqueueNotification(record(QByteArray::number(i).constData()));
        }
    }
    EXPECT_EQ(queued().size(), 1000U);
    EXPECT_EQ(queued().front(), "3");
    manager->saveUnsavedRecords(); // It is a long queue, which may still be on its way.
    EXPECT_EQ(idsInFile().size(), 1000U);
    EXPECT_EQ(storedId(), "1002");
}

TEST_F(KivNotificationManagerTest, DoesNotSayOfARecordThatItWaitsWhenItWasDropped)
{
    setPreferences(0, 0);
    start();
    for (int i = 1; i <= 1000; ++i) {
        manager->queueAdd(record(QByteArray::number(i).constData(), 2));
    }
    LogLines log;
    const NotificationSink::Delivery delivery(*manager);
    manager->enqueueNotification(record("urgent", 2));
    std::vector<std::string> lines = log.take();
    EXPECT_THAT(lines, testing::Contains("kiv.queue: message \"1\" is dropped: the queue is full"));
    EXPECT_THAT(lines, testing::Contains("kiv.queue: message \"urgent\" waits among 1000"));

    manager->enqueueNotification(record("dropped", 1));
    lines = log.take();
    EXPECT_THAT(lines, testing::Contains("kiv.queue: message \"dropped\" is dropped: the queue is full"));
    EXPECT_THAT(lines, testing::Each(testing::Not(testing::HasSubstr("waits"))));
}

TEST_F(KivNotificationManagerTest, SavesAQueueOfLongTextsAsFarAsTheFileHasRoom)
{
    setPreferences(0, 0);
    start();
    {
        const NotificationSink::Delivery delivery(*manager);
        for (int i = 1; i <= 100; ++i) {
            const Record large = record(QByteArray::number(i).constData());
            large->setContentHeight(1); // Not to be measured.
            large->setMessageText(QString(65'536, u'&'));
            manager->enqueueNotification(large);
        }
    }
    manager->saveUnsavedRecords(); // It may still be on its way.
    const Ids saved = idsInFile();
    EXPECT_EQ(saved, queued());
    ASSERT_GT(saved.size(), 40U);
    EXPECT_EQ(saved.back(), "100");
    EXPECT_EQ(storedId(), "100");
}

TEST_F(KivNotificationManagerTest, KeepsAndSavesAllMessagesBesideTheLongestHints)
{
    setPreferences(0, 0);
    start().enqueueNotification(record("1"));
    for (int i = 0; i < QueueLimits::maxHints; ++i) {
        ASSERT_TRUE(manager->showNotificationInstantly(longHint()));
    }
    {
        const NotificationSink::Delivery delivery(*manager);
        for (const std::string &id : idsFrom(2, 20)) {
            manager->enqueueNotification(record(id.c_str()));
        }
    }
    EXPECT_TRUE(waitUntil([this] { return storedId() == "20"; })) << "the queue cannot be saved";
    EXPECT_EQ(idsInFile(), idsFrom(1, 20));
    Ids waiting = queued();
    EXPECT_EQ(std::erase(waiting, ""), QueueLimits::maxHints);
    EXPECT_EQ(waiting, idsFrom(1, 20));
}

TEST_F(KivNotificationManagerTest, KeepsAThousandMessagesBesideAHundredHints)
{
    setPreferences(0, 0);
    start();
    const NotificationSink::Delivery delivery(*manager);
    for (const std::string &id : idsFrom(1, 1000)) {
        manager->queueAdd(record(id.c_str()));
    }
    manager->showNextNotification();
    while (manager->showNotificationInstantly(hint("a"))) {
    }
    manager->enqueueNotification(record("1001"));
    Ids waiting = queued();
    EXPECT_EQ(std::erase(waiting, ""), 100);
    EXPECT_EQ(waiting, idsFrom(2, 1001));
}

TEST_F(KivNotificationManagerTest, TakesNoMoreHintsFromAFileThanFromTheService)
{
    QVariantList list;
    for (const std::string &id : idsFrom(1, 150)) {
        list.append(record(id.c_str(), kPriorityInstant)->exportToDictionary());
    }
    putIntoFile(list);
    start();
    EXPECT_EQ(queued(), idsFrom(1, QueueLimits::maxHints));
}

TEST_F(KivNotificationManagerTest, LosesNoIdOfADeliveryToNewSettings)
{
    setPreferences(0, 0);
    start();
    {
        const NotificationSink::Delivery delivery(*manager);
        manager->enqueueNotification(record("5"));
        manager->updateNotificationPreferences();
        EXPECT_EQ(properties->lastMesID(), QStringLiteral("5"));
        manager->enqueueNotification(record("4"));
    }
    EXPECT_EQ(storedId(), "5");
    setPreferences(0, 0);
    manager->updateNotificationPreferences();
    EXPECT_EQ(properties->lastMesID(), QStringLiteral("0")) << "afterwards the file decides";
}

TEST_F(KivNotificationManagerTest, HandsItsIdToAFileThatIsMadeMeanwhile)
{
    start();
    manager->enqueueNotification(record("5"));
    setPreferences(0, 0);
    manager->updateNotificationPreferences();
    EXPECT_EQ(storedId(), "5") << "or all messages would come again";
    EXPECT_EQ(properties->lastMesID(), QStringLiteral("5"));
}

TEST_F(KivNotificationManagerTest, SavesTheQueueAtTheNextDeliveryWhenItCouldNotBefore)
{
    setPreferences(0, 0);
    start();
    const QString inTheWay = home.filePath(QStringLiteral("Library/Caches"));
    ASSERT_TRUE(QFile(inTheWay).open(QIODevice::WriteOnly));
    manager->enqueueNotification(record("1"));
    manager->enqueueNotification(record("2"));
    ASSERT_TRUE(QFile::remove(inTheWay));
    {
        const NotificationSink::Delivery ofNothing(*manager);
    }
    EXPECT_EQ(idsInFile(), (Ids{"1", "2"}));
    EXPECT_EQ(storedId(), "2");
}

TEST_F(KivNotificationManagerTest, StoresTheHighestIdOfTheFileOnceItHasReadIt)
{
    setPreferences(0, 0);
    putIntoFile({record("4", 0)->exportToDictionary(), record("5")->exportToDictionary()});
    FileChanges changes({cacheFile(), preferencesFile()});
    start();
    EXPECT_EQ(changes.takeNames(), (QByteArrayList{"notifications.plist", "com.tamborel.kivmenua.plist"}));
    EXPECT_EQ(idsInFile(), (Ids{"5", "4"}));
    EXPECT_EQ(storedId(), "5");
}

// The check timer.

TEST_F(KivNotificationManagerTest, ChecksEveryQuarterOfAnHourUnlessToldOtherwise)
{
    const QTimer *timer = start().showNextTimer();
    ASSERT_TRUE(timer);
    EXPECT_TRUE(timer->isActive());
    EXPECT_FALSE(timer->isSingleShot());
    EXPECT_EQ(timer->intervalAsDuration(), 900s);
    EXPECT_EQ(timer->timerType(), Qt::PreciseTimer) << "any other may be early";
}

TEST_F(KivNotificationManagerTest, HasATickNeverEarlyAndAtMostAHundredthLate)
{
    setPreferences(0, 0);
    start();
    // A timer that may be early keeps to whole seconds, so that it is early when begun at another moment of a second.
    qint64 soonest = std::numeric_limits<qint64>::max();
    qint64 latest = 0;
    QElapsedTimer aSecond;
    aSecond.start();
    EXPECT_TRUE(waitUntil([&] {
        QElapsedTimer sinceStart;
        sinceStart.start();
        manager->startCheckTimer();
        const qint64 left = manager->showNextTimer()->remainingTime();
        const qint64 due = left + sinceStart.elapsed();
        soonest = std::min(soonest, due);
        latest = std::max(latest, due);
        return aSecond.elapsed() > 1100;
    }));
    EXPECT_GE(soonest, 60'000 - 2) << "in whole milliseconds";
    EXPECT_LE(latest, 60'600);
}

TEST_F(KivNotificationManagerTest, ShowsTheNextMessageAtATickAndNotBefore)
{
    putIntoFile({record("1")->exportToDictionary()});
    start();
    EXPECT_EQ(queued(), Ids{"1"});
    EXPECT_EQ(shown(), "none") << "shown at the start";
    // The very timer that the manager made, at another speed.
    const_cast<QTimer *>(manager->showNextTimer())->setInterval(1);
    EXPECT_TRUE(waitUntil([this] { return shown() == "1"; }));
}

TEST_F(KivNotificationManagerTest, TakesTheUsersIntervalsAndCountsFromTheChange)
{
    setPreferences(2, 1);
    start();
    EXPECT_EQ(manager->showNextTimer()->intervalAsDuration(), 300s);
    for (const std::int32_t code : {0, 1, 6}) {
        setPreferences(code, 1);
        manager->updateNotificationPreferences();
        EXPECT_EQ(manager->showNextTimer()->intervalAsDuration(), 60s) << code;
        EXPECT_GT(manager->showNextTimer()->remainingTimeAsDuration(), 59s);
    }
}

TEST_F(KivNotificationManagerTest, CountsFromAnewWithTheSameIntervalToo)
{
    setPreferences(2, 1);
    start();
    ASSERT_TRUE(waitUntil([this] { return manager->showNextTimer()->remainingTimeAsDuration() < 300s - 50ms; }));
    QElapsedTimer sinceTheChange;
    sinceTheChange.start();
    manager->updateNotificationPreferences();
    const auto left = manager->showNextTimer()->remainingTimeAsDuration();
    EXPECT_GT(left + std::chrono::milliseconds(sinceTheChange.elapsed()), 300s - 20ms);
}

TEST_F(KivNotificationManagerTest, LeavesTheTimerAloneWithoutAPreferencesFile)
{
    const QTimer *before = start().showNextTimer();
    manager->updateNotificationPreferences();
    EXPECT_EQ(manager->showNextTimer(), before);
}

TEST_F(KivNotificationManagerTest, FollowsTheSettingsProgramOverTheBus)
{
    setPreferences(2, 1);
    start();
    setPreferences(5, 3);
    const BusPeer settingsProgram(*bus);
    ASSERT_TRUE(settingsProgram.connection().send(QDBusMessage::createSignal(
        QStringLiteral("/com/tamborel/kivune/Settings"), QStringLiteral("com.tamborel.kivune.DistributedNotifications"),
        QStringLiteral("KivMunuUpdateSettingsNotification"))));
    EXPECT_TRUE(waitUntil([this] { return manager->showNextTimer()->intervalAsDuration() == 3600s; }));
    EXPECT_EQ(properties->notificationClose(), 3);
}

TEST_F(KivNotificationManagerTest, ForcesNothingBesidesTheRegularTicks)
{
    start();
    const QTimer *timer = manager->showNextTimer();
    const int id = timer->timerId();
    manager->forceNotification();
    EXPECT_EQ(manager->showNextTimer(), timer);
    EXPECT_EQ(timer->timerId(), id) << "forcing has restarted the timer";
}

// Choosing and showing.

TEST_F(KivNotificationManagerTest, ChoosesTheFirstThatMayBeShownAndLeavesItQueued)
{
    start();
    const Record shownJustNow = record("1", 2);
    shownJustNow->setLastShowDate(now);
    for (const Record &each : {shownJustNow, record("2", 1), record("3", 1)}) {
        manager->queueAdd(each);
    }
    ASSERT_TRUE(manager->retrieveNextNotification());
    EXPECT_EQ(manager->retrieveNextNotification()->messageId(), QStringLiteral("2"));
    EXPECT_EQ(queued(), (Ids{"1", "2", "3"}));
    for (const Record &each : manager->notifications().records()) {
        each->setLastShowDate(now);
    }
    EXPECT_FALSE(manager->retrieveNextNotification());
}

TEST_F(KivNotificationManagerTest, MarksWhatItShows)
{
    const Record first = record("1");
    start().enqueueNotification(first);
    EXPECT_EQ(first->lastShowDate(), noon);
    EXPECT_TRUE(first->wasDisplayed());
}

TEST_F(KivNotificationManagerTest, ShowsOnePopUpAtATime)
{
    start().displayNotification(record("1"));
    const Record second = record("2");
    manager->displayNotification(second);
    manager->queueAdd(second);
    manager->forceNotification();
    EXPECT_EQ(shown(), "1");
    EXPECT_EQ(popUps(), 1);
    EXPECT_FALSE(second->wasDisplayed());
}

TEST_F(KivNotificationManagerTest, HandsTheUsersTimeOutToThePopUp)
{
    const std::pair<std::int32_t, int> timeouts[] = {{0, 15}, {1, 15}, {2, 30}, {3, 60}, {4, -1}};
    for (const auto &[code, seconds] : timeouts) {
        setPreferences(0, code);
        start().displayNotification(record("1"));
        EXPECT_EQ(secondsToClose(), seconds) << code;
        window()->close();
    }
}

TEST_F(KivNotificationManagerTest, LetsAnUpdateStayThoughTheUserWantsPopUpsToClose)
{
    setPreferences(0, 1);
    const Record update = record("1");
    update->setMessageType(0);
    start().displayNotification(update);
    EXPECT_EQ(secondsToClose(), -1);
}

TEST_F(KivNotificationManagerTest, PlacesThePopUpInTheTopRightCorner)
{
    start().displayNotification(record("1"));
    const NSSize screen = MainScreen::frame()->size;
    const NSRect frame = window()->frame();
    EXPECT_EQ(frame.origin.x + frame.size.width, screen.width - 10);
    EXPECT_EQ(frame.origin.y + frame.size.height, screen.height - 30);
    EXPECT_EQ(window()->geometry().topLeft(), QPoint(static_cast<int>(screen.width - frame.size.width) - 10, 30));
    EXPECT_EQ(manager->getWindowPoint(), frame.origin);
}

TEST_F(KivNotificationManagerTest, PlacesAMissingPopUpAsOneWithoutSize)
{
    const NSSize screen = MainScreen::frame()->size;
    EXPECT_EQ(start().getWindowPoint(), (NSPoint{screen.width - 10, screen.height - 30}));
}

// Closing.

TEST_F(KivNotificationManagerTest, ForgetsAMessageWhoseRepeatsAreUsedUp)
{
    start().enqueueNotification(record("1", 1, 1));
    manager->enqueueNotification(record("2", 0));
    ASSERT_EQ(idsInFile(), (Ids{"1", "2"}));
    window()->onCloseButton();
    EXPECT_EQ(window(), nullptr);
    EXPECT_EQ(queued(), Ids{"2"});
    EXPECT_EQ(idsInFile(), Ids{"2"});
}

TEST_F(KivNotificationManagerTest, KeepsAMessageThatIsToComeBack)
{
    start().enqueueNotification(record("1", 1, 2));
    window()->onCloseButton();
    EXPECT_EQ(queued(), Ids{"1"});
    EXPECT_EQ(idsInFile(), Ids{"1"});
    const QVariantMap entry = PropertyList::readFile(cacheFile()).toList().first().toMap();
    EXPECT_EQ(entry.value(QStringLiteral("messageRepeat")).toInt(), 1);
    EXPECT_EQ(entry.value(QStringLiteral("lastShowDate")).toDateTime(), noon);
}

TEST_F(KivNotificationManagerTest, KeepsAMessageThatTheUserWantsToSeeLater)
{
    start().enqueueNotification(record("1", 1, 1));
    window()->remindMeLaterPressed();
    EXPECT_EQ(queued(), Ids{"1"});
    EXPECT_EQ(idsInFile(), Ids{"1"});
}

TEST_F(KivNotificationManagerTest, HasForgottenItOnDiskBeforeThePopUpIsGone)
{
    start().enqueueNotification(record("1", 1, 5));
    manager->enqueueNotification(record("2"));
    const QPointer popUp(window());
    bool wasForgotten = false;
    QObject::connect(popUp, &QObject::destroyed, [&] { wasForgotten = idsInFile() == Ids{"2"}; });
    popUp->onDontRemindMeButton();
    EXPECT_EQ(idsInFile(), Ids{"2"});
    ASSERT_TRUE(waitUntil([&] { return !popUp; }));
    EXPECT_TRUE(wasForgotten);
}

TEST_F(KivNotificationManagerTest, KeepsAMessageWithoutRepeatsWhenItsPopUpTimesOut)
{
    start().enqueueNotification(record("1", 1, 0));
    window()->onCloseButton();
    EXPECT_EQ(queued(), Ids{"1"}) << "the repeats count round the corner";
}

TEST_F(KivNotificationManagerTest, ShowsNothingMoreUntilTheNextTickWhenAPopUpCloses)
{
    start().enqueueNotification(record("1"));
    manager->enqueueNotification(record("2"));
    window()->onCloseButton();
    EXPECT_EQ(shown(), "none");
    manager->showNextNotification();
    EXPECT_EQ(shown(), "2");
}

TEST_F(KivNotificationManagerTest, SavesWhenAPopUpClosesThatItDoesNotKnow)
{
    start().queueAdd(record("1"));
    ASSERT_FALSE(hasFile());
    const QPointer stranger(new KivNotificationWindow(record("9")));
    // To be its delegate is the manager's own affair: only such a cast gets past that.
    stranger->setDelegate((NotificationWindowDelegate *)&*manager); // NOLINT(google-readability-casting)
    stranger->close();
    EXPECT_EQ(idsInFile(), Ids{"1"});
    EXPECT_EQ(shown(), "none");
    EXPECT_TRUE(waitUntil([&] { return !stranger; }));
}

// Instant messages.

TEST_F(KivNotificationManagerTest, ShowsAnInstantMessageAtOnceUnderEverySetting)
{
    setPreferences(0, 0);
    start();
    properties->loadDefaultProperties();
    const Record instant = hint("Look");
    instant->setLastShowDate(now);
    instant->setWasDisplayed(true);
    manager->showNotificationInstantly(instant);
    ASSERT_TRUE(window());
    EXPECT_EQ(window()->notification(), instant);
    EXPECT_EQ(instant->messagePriority(), 3);
    EXPECT_FALSE(hasFile()) << "instant messages are not saved when they come";
    EXPECT_EQ(properties->lastMesID(), QStringLiteral("0"));
}

TEST_F(KivNotificationManagerTest, ShowsInstantMessagesOneAfterTheOtherBeforeAnyOther)
{
    start().enqueueNotification(record("1", 2));
    manager->enqueueNotification(record("2", 2));
    const std::vector<Record> hints = {hint("a"), hint("b"), hint("c")};
    for (const Record &each : hints) {
        manager->showNotificationInstantly(each);
    }
    EXPECT_EQ(shown(), "1") << "what is open stays";
    window()->remindMeLaterPressed();
    for (const Record &each : hints) {
        ASSERT_TRUE(window());
        EXPECT_EQ(window()->notification(), each);
        EXPECT_EQ(popUps(), 1);
        window()->onCloseButton();
    }
    EXPECT_EQ(shown(), "none") << "the others wait for a tick";
    EXPECT_EQ(queued(), (Ids{"1", "2"}));
    EXPECT_EQ(idsInFile(), (Ids{"1", "2"}));
}

TEST_F(KivNotificationManagerTest, DoesNotTakeAnInstantMessageOverARestart)
{
    start().showNotificationInstantly(hint("a"));
    manager->enqueueNotification(record("1"));
    EXPECT_EQ(idsInFile(), (Ids{"", "1"}));
    window()->setDelegate(nullptr);
    window()->close();
    start();
    EXPECT_EQ(queued(), Ids{"1"});
}

// Moving, and changes of the screen.

TEST_F(KivNotificationManagerTest, PutsAPopUpThatWasMovedBackAsANewOne)
{
    setPreferences(0, 2);
    const Record first = record("1");
    start().enqueueNotification(first);
    const QPointer before(window());
    const NSRect place = before->frame();
    ASSERT_TRUE(waitUntil([&] { return before->isVisible(); }));
    now = noon.addSecs(5);

    const std::uint32_t elsewhere[] = {100, 200};
    xcb_configure_window(XConnection::get(), static_cast<xcb_window_t>(before->winId()),
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, elsewhere);
    xcb_flush(XConnection::get());

    ASSERT_TRUE(waitUntil([&] { return window() != before; }));
    ASSERT_TRUE(window());
    EXPECT_EQ(window()->notification(), first);
    EXPECT_EQ(window()->frame(), place);
    EXPECT_EQ(secondsToClose(), 30);
    EXPECT_TRUE(waitUntil([&] { return !before; })) << "the old one stays";
    EXPECT_EQ(popUps(), 1);
    EXPECT_EQ(first->lastShowDate(), now);
    EXPECT_TRUE(first->wasDisplayed());
    EXPECT_EQ(first->messageRepeat(), 1U) << "counted as a close";
    EXPECT_EQ(queued(), Ids{"1"});
    EXPECT_FALSE(hasFile());

    window()->onCloseButton();
    EXPECT_EQ(queued(), Ids{}) << "the new one is not the manager's";
}

TEST_F(KivNotificationManagerTest, MakesAPopUpAnewAsIfItsMessageHadNotBeenShown)
{
    const Record first = record("1");
    start().enqueueNotification(first);
    ASSERT_EQ(first->lastShowDate(), noon);
    now = noon.addSecs(5);
    std::optional<QDateTime> shownBefore;
    std::optional<bool> wasDisplayed;
    onClock = [&] { // Asked when the new one is shown.
        shownBefore = first->lastShowDate();
        wasDisplayed = first->wasDisplayed();
    };
    manager->recreateNotificaionWindow();
    onClock = nullptr;
    EXPECT_EQ(shownBefore, epoch);
    EXPECT_EQ(wasDisplayed, false);
    EXPECT_EQ(first->lastShowDate(), now);
    EXPECT_TRUE(first->wasDisplayed());
}

TEST_F(KivNotificationManagerTest, MovesTheSamePopUpWhenTheScreensSizeChanges)
{
    start().enqueueNotification(record("1"));
    KivNotificationWindow *const popUp = window();
    const NSSize original = MainScreen::frame()->size;
    const auto switchTo = [](NSSize size) {
        ChildProcess xrandr;
        const QString text = QStringLiteral("%1x%2").arg(size.width).arg(size.height);
        ASSERT_TRUE(xrandr.start(QStringLiteral("xrandr"), {QStringLiteral("--size"), text}));
        ASSERT_TRUE(waitUntil([&] { return !xrandr.isRunning(); }));
    };
    for (const NSSize size : {NSSize{1024, 768}, original}) {
        switchTo(size);
        const auto isThere = [&] {
            const QRect place = popUp->geometry();
            return place.right() + 1 == static_cast<int>(size.width) - 10 && place.top() == 30;
        };
        EXPECT_TRUE(waitUntil(isThere)) << popUp->x() << ' ' << popUp->y();
        EXPECT_EQ(window(), popUp);
        EXPECT_TRUE(popUp->isVisible());
    }
}

// The locks.

TEST_F(KivNotificationManagerTest, OpensNoSecondPopUpWhileItIsOpeningOne)
{
    start();
    manager->queueAdd(record("1"));
    int forced = 0;
    onClock = [&] { // Asked for the first time while the lock is held and no pop-up is there yet.
        if (!window()) {
            ++forced;
            manager->forceNotification();
        }
    };
    manager->showNextNotification();
    EXPECT_GT(forced, 0);
    EXPECT_EQ(shown(), "1");
    EXPECT_EQ(popUps(), 1);
}

TEST_F(KivNotificationManagerTest, DoesNotTakeALockThatIsHeldForAPopUp)
{
    const std::string locked = "kiv.queue: nothing is shown: the lock is held, or cannot be taken";
    const std::string occupied = "kiv.queue: nothing new is shown while a pop-up is there";
    start();
    manager->queueAdd(record("1"));
    LogLines log;
    bool wasForced = false;
    onClock = [&] {
        if (!std::exchange(wasForced, true)) {
            manager->forceNotification();
        }
    };
    manager->showNextNotification();
    std::vector<std::string> lines = log.take();
    EXPECT_THAT(lines, testing::Contains(locked));
    EXPECT_THAT(lines, testing::Not(testing::Contains(occupied)));

    ASSERT_EQ(shown(), "1");
    manager->forceNotification();
    lines = log.take();
    EXPECT_THAT(lines, testing::Contains(occupied));
    EXPECT_THAT(lines, testing::Not(testing::Contains(locked)));
}

TEST_F(KivNotificationManagerTest, DoesNotMakeAPopUpAnewWhileTheLockIsHeld)
{
    const Record first = record("1");
    start().displayNotification(first);
    const QPointer before(window());
    // The lock is held around the choice of the next record, too: have it made with this pop-up open, as if another
    // opening were under way.
    bool wasMadeAnew = false;
    manager->queueAdd(record("2"));
    KivNotificationWindow *seen = nullptr;
    window()->setDelegate(nullptr);
    window()->close();
    ASSERT_TRUE(waitUntil([&] { return !before; }));
    ASSERT_EQ(window(), nullptr);
    onClock = [&] {
        onClock = nullptr;
        manager->displayNotification(first); // Without the lock, which showNextNotification holds now.
        seen = window();
        manager->recreateNotificaionWindow();
        wasMadeAnew = window() != seen;
    };
    manager->showNextNotification();
    ASSERT_TRUE(seen);
    EXPECT_FALSE(wasMadeAnew);
    EXPECT_EQ(window(), seen) << "the closed pop-up stays the manager's until it is gone";
    EXPECT_EQ(first->lastShowDate(), epoch);
    EXPECT_FALSE(first->wasDisplayed());
    EXPECT_EQ(popUps(), 0);
    EXPECT_TRUE(waitUntil([&] { return !window(); }));
    manager->showNextNotification();
    EXPECT_EQ(popUps(), 1) << "and then the next tick shows one";
}

TEST_F(KivNotificationManagerTest, GivesTheQueueBackWhenSomethingIsThrown)
{
    start();
    onClock = [&] {
        if (window()) {
            throw std::runtime_error("no time");
        }
    };
    EXPECT_THROW(manager->showNotificationInstantly(hint("a")), std::runtime_error);
    onClock = nullptr;
    window()->onDontRemindMeButton();
    manager->queueAdd(record("1"));
    // This thread would get the queue in any case.
    auto another = std::async(std::launch::async, [this] {
        manager->queueAdd(record("2"));
        manager->enqueueNotification(record("3"));
    });
    ASSERT_EQ(another.wait_for(10s), std::future_status::ready);
    another.get();
    EXPECT_EQ(queued(), (Ids{"1", "2", "3"}));
    manager->showNextNotification();
    EXPECT_EQ(shown(), "1") << "the other lock is still held";
}

// The cache file.

TEST_F(KivNotificationManagerTest, TakesTheQueueOverARestart)
{
    start().enqueueNotification(record("1"));
    manager->enqueueNotification(record("2", 2));
    manager->enqueueNotification(record("3", 0));
    window()->remindMeLaterPressed();
    const ino_t before = inode();
    start();
    EXPECT_EQ(queued(), (Ids{"2", "1", "3"}));
    EXPECT_EQ(manager->notifications().records().at(1)->lastShowDate(), noon);
    EXPECT_FALSE(manager->notifications().records().at(1)->wasDisplayed());
    EXPECT_EQ(shown(), "none");
    EXPECT_EQ(properties->lastMesID(), QStringLiteral("3"));
    EXPECT_EQ(inode(), before) << "a file that holds the queue already was written";
}

TEST_F(KivNotificationManagerTest, OrdersImportedRecordsByPriorityAndDropsDuplicates)
{
    putIntoFile({record("1", 0)->exportToDictionary(), record("2", 2)->exportToDictionary(),
                 record("1", 2)->exportToDictionary(), record("3", 2)->exportToDictionary()});
    start();
    EXPECT_EQ(queued(), (Ids{"2", "3", "1"}));
    EXPECT_EQ(idsInFile(), (Ids{"2", "3", "1"}));
}

TEST_F(KivNotificationManagerTest, JudgesTheRelevanceAgainAtEveryStart)
{
    const Record outdated = record("2");
    outdated->setMaxVersion(QStringLiteral("3.1"));
    putIntoFile({record("1")->exportToDictionary(), outdated->exportToDictionary()});
    start();
    EXPECT_EQ(queued(), Ids{"1"});
    EXPECT_EQ(idsInFile(), (Ids{"1", "2"})) << "a single record changes nothing in the file";
    manager->exportNotificationsToFile();
    EXPECT_EQ(idsInFile(), Ids{"1"});
}

TEST_F(KivNotificationManagerTest, SkipsAnEntryThatIsNoRecordAndKeepsTheOthers)
{
    const QVariant notOurs[] = {
        with(QStringLiteral("newInTheNextVersion"), true, "8"),
        with(QStringLiteral("minVersion"), QStringLiteral("4"), "8"), // Relevance cannot compare it.
        with(QStringLiteral("maxDate"), QStringLiteral("tomorrow"), "8"),
        QVariantMap(),
        QStringLiteral("text"),
        7,
        QVariantList{record("8")->exportToDictionary()},
    };
    QVariantList list{record("1")->exportToDictionary()};
    for (const QVariant &entry : notOurs) {
        list.append(entry);
    }
    list.append(record("2")->exportToDictionary());
    putIntoFile(list);
    start();
    EXPECT_EQ(queued(), (Ids{"1", "2"}));
    EXPECT_EQ(idsInFile(), (Ids{"1", "2"}));
}

TEST_F(KivNotificationManagerTest, StartsEmptyWithAFileThatIsNoListAndKeepsItAside)
{
    const NotificationCache cache(home.path());
    ASSERT_TRUE(QDir().mkpath(QFileInfo(cacheFile()).path()));
    QFile file(cacheFile());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<plist><array><dict><key>cut");
    file.close();
    start();
    EXPECT_EQ(queued(), Ids{});
    manager->enqueueNotification(record("1"));
    manager->enqueueNotification(record("2"));
    EXPECT_EQ(idsInFile(), (Ids{"1", "2"}));
    EXPECT_TRUE(QFileInfo::exists(cache.pathOfUnreadable()));
}

TEST_F(KivNotificationManagerTest, GoesOnWhenTheFileCannotBeWritten)
{
    QFile inTheWay(home.filePath(QStringLiteral("Library")));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    start().enqueueNotification(record("1"));
    manager->enqueueNotification(record("2"));
    window()->onCloseButton();
    EXPECT_EQ(queued(), Ids{"2"});
    ASSERT_TRUE(inTheWay.remove());
    manager->exportNotificationsToFile();
    EXPECT_EQ(idsInFile(), Ids{"2"});
}

// A cache file that takes long to read.

class LongCache : public KivNotificationManagerTest
{
protected:
    static constexpr int count = 200;

    LongCache()
    {
        QVariantList list;
        for (const std::string &id : idsFrom(1, count)) {
            const Record one = record(id.c_str());
            one->setContentHeight(60); // Not to be measured.
            one->setMessageText(QString(static_cast<qsizetype>(CacheWriter::maxBytesAtOnce / 100), u'x'));
            list.append(one->exportToDictionary());
        }
        putIntoFile(list);
    }

    [[nodiscard]] bool isImported() const { return manager->showNextTimer() != nullptr; }
};

TEST_F(LongCache, KeepsNobodyWaiting)
{
    setPreferences(0, 0);
    FileChanges changes({cacheFile(), preferencesFile()});
    std::string storedWhenImported;
    std::string lastWhenImported;
    start().whenImported([&] {
        storedWhenImported = storedId();
        lastWhenImported = properties->lastMesID().toStdString();
    });
    EXPECT_EQ(queued(), Ids{});
    EXPECT_FALSE(isImported());
    int turns = 0;
    QTimer turn;
    turn.callOnTimeout([&] {
        turns += isImported() ? 0 : 1;
        manager->forceNotification();
        if (!isImported()) {
            EXPECT_EQ(shown(), "none");
            EXPECT_EQ(lastWhenImported, "");
        }
    });
    turn.start(0);
    ASSERT_TRUE(waitUntil([this] { return isImported(); }));
    EXPECT_GT(turns, 0);
    EXPECT_EQ(queued(), idsFrom(1, count));
    EXPECT_EQ(lastWhenImported, "200") << "with which the feed is asked";
    EXPECT_EQ(storedWhenImported, "0") << "it is not known yet that the file has all of it";
    EXPECT_TRUE(waitUntil([this] { return storedId() == "200"; }));
    manager->saveUnsavedRecords();
    EXPECT_EQ(changes.takeNames(), QByteArrayList{"com.tamborel.kivmenua.plist"}) << "the queue is in its file";
}

TEST_F(LongCache, IsImportedAtOnceForWhoComesLater)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return isImported(); }));
    bool isCalled = false;
    manager->whenImported([&] { isCalled = true; });
    EXPECT_TRUE(isCalled);
}

TEST_F(LongCache, StandsBeforeWhatComesMeanwhile)
{
    setPreferences(0, 0);
    start();
    {
        const NotificationSink::Delivery delivery(*manager);
        manager->enqueueNotification(record("7", 2)); // It waits already.
        manager->enqueueNotification(record("201"));
    }
    EXPECT_EQ(queued(), idsFrom(1, count + 1));
    EXPECT_TRUE(waitUntil([&] { return idsInFile() == idsFrom(1, count + 1) && storedId() == "201"; }));
}

TEST_F(LongCache, HasAHintWaitUntilItIsImported)
{
    setPreferences(0, 0);
    start();
    const Record first = hint("a");
    EXPECT_TRUE(manager->showNotificationInstantly(first));
    EXPECT_FALSE(isImported()) << "the user has waited for it";
    EXPECT_EQ(popUps(), 0);
    ASSERT_TRUE(waitUntil([this] { return window() != nullptr; }));
    EXPECT_EQ(window()->notification(), first);
    EXPECT_EQ(queued().size(), count + 1U);
    window()->onDontRemindMeButton();
    EXPECT_TRUE(waitUntil([&] { return idsInFile() == idsFrom(1, count); }));
}

TEST_F(LongCache, LosesNothingWhenTheAgentEndsBeforeItIsImported)
{
    setPreferences(0, 0);
    const ino_t before = inode();
    start().whenImported([] { ADD_FAILURE() << "the feed is asked at the end"; });
    manager->showNotificationInstantly(hint("a"));
    manager->saveUnsavedRecords();
    EXPECT_EQ(inode(), before) << "it has been written, and holds it all already";
    EXPECT_EQ(window(), nullptr) << "there is nobody any more to see it";
    EXPECT_EQ(storedId(), "0");

    start();
    ASSERT_TRUE(waitUntil([this] { return isImported(); }));
    EXPECT_EQ(queued(), idsFrom(1, count));
}

TEST_F(LongCache, KeepsAllItsRecordsThoughHintsComeMeanwhile)
{
    setPreferences(0, 0);
    QVariantList list;
    for (const std::string &id : idsFrom(1, static_cast<int>(QueueLimits::maxRecords))) {
        const Record one = record(id.c_str());
        one->setContentHeight(60); // Not to be measured.
        list.append(one->exportToDictionary());
    }
    putIntoFile(list);
    start();
    int shownHints = 0;
    while (manager->showNotificationInstantly(hint("a"))) {
        ++shownHints;
    }
    EXPECT_EQ(shownHints, QueueLimits::maxHints);
    EXPECT_FALSE(isImported());
    ASSERT_TRUE(waitUntil([this] { return isImported(); }, 60s));
    Ids imported = queued();
    EXPECT_EQ(std::erase(imported, ""), QueueLimits::maxHints);
    EXPECT_EQ(imported, idsFrom(1, static_cast<int>(QueueLimits::maxRecords)));
}

TEST_F(LongCache, DoesNotBeginTheCheckTimerForNewSettings)
{
    setPreferences(0, 0);
    start();
    manager->updateNotificationPreferences();
    EXPECT_FALSE(isImported());
    ASSERT_TRUE(waitUntil([this] { return isImported(); }));
    EXPECT_EQ(properties->lastMesID(), QStringLiteral("200"));
    EXPECT_TRUE(waitUntil([this] { return storedId() == "200"; }));
}

// The rest.

TEST_F(KivNotificationManagerTest, KeepsTheMenuObject)
{
    EXPECT_EQ(start().kivMenu(), nullptr);
    int menu = 0; // It is never looked at.
    manager->setKivMenu(reinterpret_cast<KIVMenuObj *>(&menu));
    EXPECT_EQ(manager->kivMenu(), reinterpret_cast<KIVMenuObj *>(&menu));
}

TEST_F(KivNotificationManagerTest, LeavesItsPopUpOpenAtItsEnd)
{
    start().displayNotification(record("1"));
    const QPointer popUp(window());
    manager.reset();
    EXPECT_TRUE(popUp->isVisible());
    popUp->onCloseButton(); // Nobody is told.
    EXPECT_TRUE(waitUntil([&] { return !popUp; }));
}

} // namespace
