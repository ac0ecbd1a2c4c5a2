#pragma once

#include "notify/popup/NotificationWindowDelegate.h"
#include "notify/queue/CacheImport.h"
#include "notify/queue/CacheWriter.h"
#include "notify/queue/LastMessageId.h"
#include "notify/queue/NotificationCache.h"
#include "notify/queue/NotificationQueue.h"
#include "notify/queue/ReadWriteLock.h"
#include "notify/record/NotificationSink.h"
#include "platform/DistributedNotifications.h"
#include "platform/Geometry.h"

#include <QDateTime>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

class KIVMenuObj;
class KivNotificationProperties;

/// Owns the support messages that the agent has accepted: keeps them in a queue and, for its next run, in a cache file,
/// decides when the next one may appear, and shows one at a time in a pop-up at the top-right corner of the main
/// screen.
///
/// The properties decide which messages are wanted, and which may be shown now. Main thread only; the locks are against
/// a nested event loop, which must neither open a second pop-up nor change the queue half-way. The queue's lock is
/// always locked before m_rwLock.
class KivNotificationManager final : public QObject, public NotificationSink, private NotificationWindowDelegate
{
public:
    /// Reads the cache under `homeFolder`, starts the check timer once that has been taken in, and from now on follows
    /// the server's settings program. `properties` must outlive this object; `clock` tells when a message is shown.
    KivNotificationManager(KivNotificationProperties &properties, const QString &homeFolder,
                           std::function<QDateTime()> clock);
    /// A pop-up that is open stays.
    ~KivNotificationManager() override;

    /// The one of this process, with its properties, home and clock. Made at first use, in shell/SharedInstances.cpp,
    /// and never destroyed.
    [[nodiscard]] static KivNotificationManager &sharedInstance();

    /// Loads the user's settings again; a new check interval counts from now. Nothing happens without a preferences
    /// file.
    void updateNotificationPreferences();

    /// Starts the check timer, anew if it runs. The first tick comes after one whole interval. Not during the import.
    void startCheckTimer();

    /// Does what a tick of the check timer does, now; the timer goes on. Nothing happens while there is no timer.
    void forceNotification();

    /// Opens a pop-up for the next message that may be shown, unless one is open.
    void showNextNotification();

    /// The first queued message that may be shown now; null when there is none. It stays in the queue.
    [[nodiscard]] std::shared_ptr<KivNotification> retrieveNextNotification() const;

    /// Opens a pop-up for `record`, which is never null, unless one is open.
    void displayNotification(const std::shared_ptr<KivNotification> &record);

    /// Where the bottom-left corner of the pop-up belongs, as PopUpPlacement.h says; of one without size when none is
    /// open. Remembers the size of the main screen.
    [[nodiscard]] NSPoint getWindowPoint();

    /// Accepts a record from feed or cache, if it is meant for this installation: queues it, and shows it when it is
    /// the only one, else saves the queue. Its id counts as received in any case. Throws as the relevance rule does;
    /// the record is not accepted then.
    ///
    /// A queue of a thousand records, or of 15 MB in the file, is full: the oldest of the least urgent ones are
    /// dropped.
    ///
    /// Everything but the queueing happens at the end of the delivery; a record outside one is a delivery by itself.
    /// The queue is saved first and then the id, so that an agent that is killed in between receives the messages
    /// again. As long as the queue cannot be written, the id is not written either. A queue that takes more than
    /// CacheWriter::maxBytesAtOnce is written in a thread, and what is to follow does so once that is over: the event
    /// loop goes on meanwhile. The record that is shown at once
    /// comes last. It is not saved before it is shown: if showing it crashed the agent, it would do so again at every
    /// start. When it came alone, it is saved only when another record comes, its pop-up closes or the agent ends.
    void enqueueNotification(const std::shared_ptr<KivNotification> &record) override;

    /// Queues `record`, which is never null, as NotificationQueue::add does.
    void queueAdd(const std::shared_ptr<KivNotification> &record);

    /// Puts `record`, which is never null, in front of all that is not instant, and shows it when no pop-up is open.
    /// False, and the record is dropped, when a hundred instant ones wait already: nobody reads so many, and they are
    /// kept in memory.
    bool showNotificationInstantly(const std::shared_ptr<KivNotification> &record);

    /// Accepts what the cache file holds. An entry is skipped that is no record, or whose relevance cannot be
    /// determined. A long file is read in a thread, and taken in over several iterations of the event loop. Until it
    /// is, nothing is shown and nothing saved: hints wait outside the queue, of which they would take room from what
    /// is still to come, and a record that is enqueued has the rest read first. Called once, by the constructor.
    void importNotificationsFromFile();

    /// Calls back when the cache file has been taken in, or now when it has been: for what needs to know the last
    /// message id, as the feed's requests do. Keeps one call, and drops it at the agent's end.
    void whenImported(const std::function<void()> &call);

    /// Saves the queue to the cache file; within a delivery, at its end, and behind a save that is under way.
    /// When that fails, the file stays as it was until the next time or the end of the next delivery.
    void exportNotificationsToFile();

    /// At the agent's end: waits for a save that is under way, and saves the queue without its instant messages when
    /// something of it could not be saved before. Else the file stays as it is, also during the import.
    void saveUnsavedRecords();

    /// Closes the pop-up and opens another one for its message where it belongs. (The name is spelt so on purpose.)
    void recreateNotificaionWindow();

    /// The status item's menu: kept here for the life of the agent, and not used. Null before start-up's end and after
    /// teardown.
    [[nodiscard]] KIVMenuObj *kivMenu() const noexcept { return m_kivMenu; }
    void setKivMenu(KIVMenuObj *kivMenu) noexcept { m_kivMenu = kivMenu; }

    /// The pop-up that is open; null when none is.
    [[nodiscard]] KivNotificationWindow *notificationWindow() const noexcept;
    [[nodiscard]] const NotificationQueue &notifications() const noexcept { return m_notifications; }
    /// The check timer; null during the import.
    [[nodiscard]] const QTimer *showNextTimer() const noexcept { return m_showNextTimer.get(); }

private:
    void windowWillClose(KivNotificationWindow &window) override;
    void windowDidMove(KivNotificationWindow &window) override;

    /// Those records of the queue that belong there, save one that has still to be shown.
    void writeFile(const std::function<bool(const KivNotification &)> &belongs);
    void didWriteFile(bool isWritten);
    void accept(const std::shared_ptr<KivNotification> &record);
    void didImport();
    void showInstantRecordNext();
    void finishDelivery() noexcept;
    void showFirstRecord(const std::shared_ptr<KivNotification> &record) noexcept;

    void beginDelivery() override;
    void endDelivery() noexcept override;

    KivNotificationProperties &m_properties;
    LastMessageId m_lastMesID;
    std::function<QDateTime()> m_clock;
    NotificationCache m_cache;
    CacheWriter m_writer{m_cache, [this](bool isWritten) { didWriteFile(isWritten); }};
    CacheImport m_import{m_cache,
                         {.take = [this](const std::shared_ptr<KivNotification> &record) { accept(record); },
                          .done = [this] { didImport(); }}};
    std::function<void()> m_whenImported;
    std::vector<std::shared_ptr<KivNotification>> m_hintsMeanwhile; ///< During the import.
    int m_deliveries = 0;                                           ///< How many are under way, one within the other.
    bool m_isExportDue = false;                                     ///< Asked for in a delivery, or failed.
    bool m_isRecordUnsaved = false;                                 ///< One that is shown at once.
    bool m_isFinishDue = false;                                     ///< Of a delivery, once the queue has been saved.
    bool m_isShownRecordToSave = false;                             ///< Because the delivery has brought others, too.
    std::shared_ptr<KivNotification> m_recordToShow;                ///< At the end of the delivery; null for none.
    /// The pop-up destroys itself some time after it has closed.
    QPointer<KivNotificationWindow> m_notificationWindow;
    NotificationQueue m_notifications;
    std::recursive_mutex m_notificationsLock;
    std::unique_ptr<QTimer> m_showNextTimer;
    KIVMenuObj *m_kivMenu = nullptr;
    ReadWriteLock m_rwLock;
    std::unique_ptr<DistributedNotifications::Observer> m_settingsObserver;
};
