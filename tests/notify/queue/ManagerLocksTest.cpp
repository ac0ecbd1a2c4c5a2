#include "notify/popup/KivNotificationWindow.h"
#include "notify/queue/KivNotificationManager.h"
#include "notify/record/DistantFuture.h"
#include "notify/rules/KivNotificationProperties.h"
#include "platform/Bundle.h"
#include "tests/notify/queue/LockRecorder.h"
#include "tests/support/WaitUntil.h"

#include <QPointer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

namespace
{

using Record = std::shared_ptr<KivNotification>;
using Kind = LockRecorder::Kind;

Record record(const char *id)
{
    auto result = std::make_shared<KivNotification>();
    result->setMessageId(QString::fromLatin1(id));
    result->setMaxDate(distantFuture());
    return result;
}

/// A manager whose locks are watched. Everything happens on one thread here: that two locks are held where they must be
/// is seen, and not brought about.
class ManagerLocks : public testing::Test
{
protected:
    ManagerLocks()
    {
        const auto clock = [this] {
            onClock();
            return QDateTime::currentDateTimeUtc();
        };
        const UserDatabase nobody{.loginName = [] { return std::nullopt; },
                                  .groupMembers = [](const std::string &) { return std::vector<std::string>(); }};
        properties.emplace(bundle, home.path(), QString(), nobody, clock);
        manager.emplace(*properties, home.path(), clock);
        locks.emplace(&*manager, sizeof *manager,
                      [this](Kind kind, LockRecorder::Change change) { onLock(kind, change); });
    }

    ~ManagerLocks() override
    {
        locks.reset();
        if (const QPointer window(manager->notificationWindow()); window) {
            window->setDelegate(nullptr);
            window->close();
            EXPECT_TRUE(waitUntil([&] { return !window; }));
        }
    }

    [[nodiscard]] std::size_t queued() const { return manager->notifications().records().size(); }
    [[nodiscard]] bool holdsQueue() const { return locks && locks->depth(Kind::Mutex) > 0; }
    [[nodiscard]] bool holdsOpening() const { return locks && locks->depth(Kind::ReadWrite) > 0; }

    /// Whether the queue has changed only while its lock was held.
    [[nodiscard]] bool changedUnderItsLock() const { return !changedWithoutLock && queued() == lastSeen; }

    void onLock(Kind kind, LockRecorder::Change change)
    {
        if (kind == Kind::Mutex && change == LockRecorder::Change::Taken && locks->depth(kind) == 1) {
            changedWithoutLock = changedWithoutLock || queued() != lastSeen;
            tookQueueLast = tookQueueLast || holdsOpening();
        } else if (kind == Kind::Mutex && locks->depth(kind) == 0) {
            lastSeen = queued();
        }
    }

    void onClock()
    {
        if (holdsOpening()) {
            choseUnderBoth = holdsQueue();
        }
    }

    const QTemporaryDir home;
    const Bundle bundle{home.path()};
    std::optional<KivNotificationProperties> properties;
    std::optional<KivNotificationManager> manager;
    std::optional<LockRecorder> locks;

    std::size_t lastSeen = 0;
    bool changedWithoutLock = false;
    bool tookQueueLast = false;         ///< The queue's lock, while the other was held.
    std::optional<bool> choseUnderBoth; ///< Whether the queue's was held, too, when the next record was chosen.
};

} // namespace

TEST_F(ManagerLocks, AreHeldWhileARecordIsAcceptedAndShown)
{
    manager->enqueueNotification(record("1"));
    ASSERT_EQ(queued(), 1U);
    ASSERT_TRUE(manager->notificationWindow());
    EXPECT_TRUE(changedUnderItsLock());
    EXPECT_EQ(choseUnderBoth, true);
    EXPECT_FALSE(tookQueueLast);
    EXPECT_FALSE(holdsQueue() || holdsOpening()) << "not given back";

    manager->enqueueNotification(record("2"));
    ASSERT_EQ(queued(), 2U);
    EXPECT_TRUE(changedUnderItsLock());
}

TEST_F(ManagerLocks, AreHeldWhileAnInstantRecordIsAddedAndShown)
{
    manager->showNotificationInstantly(record("1"));
    ASSERT_EQ(queued(), 1U);
    ASSERT_TRUE(manager->notificationWindow());
    EXPECT_TRUE(changedUnderItsLock());
    EXPECT_EQ(choseUnderBoth, true);
    EXPECT_FALSE(tookQueueLast);
    EXPECT_FALSE(holdsQueue() || holdsOpening()) << "not given back";
}

TEST_F(ManagerLocks, AreHeldWhileARecordIsRemoved)
{
    manager->enqueueNotification(record("1"));
    const QPointer window(manager->notificationWindow());
    ASSERT_TRUE(window);
    window->onDontRemindMeButton();
    ASSERT_EQ(queued(), 0U);
    EXPECT_TRUE(changedUnderItsLock());
    EXPECT_FALSE(tookQueueLast);
    EXPECT_TRUE(waitUntil([&] { return !window; }));
}

TEST_F(ManagerLocks, AreNotBothTakenAtATickNorWhenAPopUpIsMadeAnew)
{
    manager->queueAdd(record("1"));
    lastSeen = queued();
    manager->showNextNotification();
    ASSERT_TRUE(manager->notificationWindow());
    EXPECT_EQ(choseUnderBoth, false);

    const QPointer before(manager->notificationWindow());
    choseUnderBoth.reset();
    manager->recreateNotificaionWindow();
    EXPECT_EQ(choseUnderBoth, false) << "made anew without the lock of opening";
    EXPECT_TRUE(waitUntil([&] { return !before; }));
}
