#include "notify/queue/KivNotificationManager.h"

#include "notify/popup/KivNotificationWindow.h"
#include "notify/popup/PopUpPlacement.h"
#include "notify/popup/ScreenChange.h"
#include "notify/queue/QueueLimits.h"
#include "notify/record/KivNotification.h"
#include "notify/rules/CheckInterval.h"
#include "notify/rules/CloseTimeout.h"
#include "notify/rules/KivNotificationProperties.h"
#include "notify/rules/SettingsAnnouncement.h"
#include "platform/LogCategories.h"
#include "platform/MainScreen.h"
#include "platform/data/UtcTime.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <utility>

namespace
{

/// The main screen's size when a pop-up was last placed.
NSSize prevScreenSize;

NSRect mainScreen()
{
    return MainScreen::frame().value_or(NSRect());
}

void tellWhyNothingIsShown(const ReadWriteLock::Hold &hold)
{
    qCDebug(queueLog, hold ? "nothing new is shown while a pop-up is there"
                           : "nothing is shown: the lock is held, or cannot be taken");
}

} // namespace

KivNotificationManager::KivNotificationManager(KivNotificationProperties &properties, const QString &homeFolder,
                                               std::function<QDateTime()> clock)
    : m_properties(properties)
    , m_lastMesID(properties)
    , m_clock(std::move(clock))
    , m_cache(homeFolder)
    , m_settingsObserver(
          DistributedNotifications::addObserver(settingsChanged, [this] { updateNotificationPreferences(); }))
{
    importNotificationsFromFile();
}

KivNotificationManager::~KivNotificationManager()
{
    if (m_notificationWindow) {
        m_notificationWindow->setDelegate(nullptr);
    }
}

void KivNotificationManager::updateNotificationPreferences()
{
    if (m_lastMesID.reloadSettings() && !m_import.isUnderWay()) {
        startCheckTimer();
    }
}

void KivNotificationManager::startCheckTimer()
{
    m_showNextTimer = std::make_unique<QTimer>();
    // A tick may be late by 1 % of the interval, and never early. The coarser types may be early, and leave that
    // tolerance behind; this one is within a millisecond, and costs no wake-up more.
    m_showNextTimer->setTimerType(Qt::PreciseTimer);
    m_showNextTimer->callOnTimeout(this, &KivNotificationManager::showNextNotification);
    m_showNextTimer->start(checkInterval(m_properties.notificationShow()));
}

void KivNotificationManager::forceNotification()
{
    if (m_showNextTimer) {
        showNextNotification();
    }
}

void KivNotificationManager::showNextNotification()
{
    const ReadWriteLock::Hold hold = m_rwLock.lockForWriting();
    if (!hold || m_notificationWindow) {
        tellWhyNothingIsShown(hold);
        return;
    }
    if (const std::shared_ptr<KivNotification> record = retrieveNextNotification()) {
        displayNotification(record);
    }
}

std::shared_ptr<KivNotification> KivNotificationManager::retrieveNextNotification() const
{
    for (const std::shared_ptr<KivNotification> &record : m_notifications.records()) {
        if (record != m_recordToShow && m_properties.shouldShowNotification(*record)) {
            return record;
        }
    }
    return nullptr;
}

void KivNotificationManager::displayNotification(const std::shared_ptr<KivNotification> &record)
{
    if (m_notificationWindow) {
        qCDebug(queueLog) << "message" << record->messageId() << "is not shown while a pop-up is there";
        return;
    }
    const MainScreen::Held screen;                            // It is built for it, placed in it and shown on it.
    m_notificationWindow = new KivNotificationWindow(record); // It destroys itself after it has closed.
    m_notificationWindow->setDelegate(this);
    const std::int32_t timeout = closeTimeout(record->messageType(), m_properties.notificationClose());
    const NSPoint place = getWindowPoint();
    qCDebug(popUpLog) << "shows message" << record->messageId() << "at" << place.x << place.y << "for" << timeout
                      << "s (0: 15, -1: for ever)";
    m_notificationWindow->showAtScreenPoint(place, timeout);
    record->setLastShowDate(m_clock());
    record->setWasDisplayed(true);
}

NSPoint KivNotificationManager::getWindowPoint()
{
    prevScreenSize = mainScreen().size;
    const KivNotificationWindow *window = m_notificationWindow;
    return popUpOrigin(prevScreenSize, window ? window->frame().size : NSSize(), window ? window->topReach() : 0);
}

void KivNotificationManager::enqueueNotification(const std::shared_ptr<KivNotification> &record)
{
    m_import.finish(); // What has been waiting since the last run comes first.
    accept(record);
}

void KivNotificationManager::accept(const std::shared_ptr<KivNotification> &record)
{
    const Delivery delivery(*this);
    // Before the relevance: a message that is not for this installation need not be sent again either.
    m_lastMesID.raiseTo(record->messageId());
    if (!m_properties.notificationIsRelevant(*record)) {
        return;
    }
    if (record->messagePriority() == kPriorityInstant && hasAllHints()) {
        return; // Somebody has put many into the file.
    }
    const std::lock_guard hold(m_notificationsLock);
    record->setWasDisplayed(false);
    queueAdd(record);
    m_notifications.dropBeyond({.records = QueueLimits::maxRecords, .bytes = QueueLimits::maxBytes});
    if (queueLog().isDebugEnabled() && std::ranges::count(m_notifications.records(), record) > 0) {
        qCDebug(queueLog) << "message" << record->messageId() << "waits among" << m_notifications.records().size();
    }
    if (m_notifications.records().size() != 1 || m_notificationWindow) {
        exportNotificationsToFile();
    } else if (m_showNextTimer) { // Else it is only read back.
        m_recordToShow = m_notifications.records().front();
        m_isRecordUnsaved = m_isRecordUnsaved || m_recordToShow == record; // And not one that waited there.
    }
}

void KivNotificationManager::queueAdd(const std::shared_ptr<KivNotification> &record)
{
    m_notifications.add(record);
}

bool KivNotificationManager::hasAllHints() const
{
    const auto waits = [shown = m_notificationWindow ? m_notificationWindow->notification() : nullptr](
                           const auto &one) { return one->messagePriority() == kPriorityInstant && one != shown; };
    return std::ranges::count_if(m_notifications.records(), waits) + std::ssize(m_hintsMeanwhile) >=
           QueueLimits::maxHints;
}

bool KivNotificationManager::showNotificationInstantly(const std::shared_ptr<KivNotification> &record)
{
    record->setMessagePriority(kPriorityInstant);
    const std::lock_guard hold(m_notificationsLock);
    if (hasAllHints()) {
        qCDebug(queueLog, "a hint is dropped: %d wait already", QueueLimits::maxHints);
        return false;
    }
    if (m_import.isUnderWay()) {
        m_hintsMeanwhile.push_back(record);
        return true;
    }
    queueAdd(record);
    if (!m_notificationWindow) {
        forceNotification();
    } else {
        qCDebug(queueLog, "the hint waits for the pop-up that is there");
    }
    return true;
}

void KivNotificationManager::importNotificationsFromFile()
{
    // The file stays whole until all of it has been read: an agent that is killed on the way loses nothing. And if
    // nothing has changed then, it is not written at all.
    beginDelivery();
    m_import.begin();
}

void KivNotificationManager::didImport()
{
    endDelivery();
    if (!m_showNextTimer) {
        startCheckTimer();
    }
    for (const std::shared_ptr<KivNotification> &hint : std::exchange(m_hintsMeanwhile, {})) {
        showNotificationInstantly(hint);
    }
    if (const std::function<void()> call = std::exchange(m_whenImported, nullptr)) {
        call();
    }
}

void KivNotificationManager::whenImported(const std::function<void()> &call)
{
    if (m_import.isUnderWay()) {
        m_whenImported = call;
    } else {
        call();
    }
}

void KivNotificationManager::exportNotificationsToFile()
{
    m_isExportDue = true;
    if (m_deliveries == 0 && !m_writer.isWriting()) {
        writeFile(Hints::Include);
    }
}

void KivNotificationManager::saveUnsavedRecords()
{
    if (m_import.isUnderWay()) { // And so nothing has come but hints: the file has it all.
        m_import.abandon();
        return;
    }
    if (m_isFinishDue) { // It is not shown any more, and so must not be missing.
        m_recordToShow = nullptr;
        m_isRecordUnsaved = true;
        m_isExportDue = true; // Before its id is stored.
    }
    m_writer.wait();
    if (m_isRecordUnsaved || m_isExportDue) {
        writeFile(Hints::LeaveOut);
        m_writer.wait();
    }
    m_lastMesID.finish();
}

void KivNotificationManager::writeFile(Hints hints)
{
    const bool isRoomForAll = m_notifications.bytes(Hints::Include) <= QueueLimits::maxBytes;
    const Hints saved = isRoomForAll ? hints : Hints::LeaveOut;
    m_isExportDue = false;
    m_isRecordUnsaved = m_recordToShow != nullptr;
    m_writer.write(m_notifications.exported(saved, m_recordToShow.get()), m_notifications.bytes(saved));
}

/// The list that was handed over is in the file, or is not.
void KivNotificationManager::didWriteFile(bool isWritten)
{
    const std::lock_guard hold(m_notificationsLock);
    const bool isAskedForAgain = m_isExportDue;
    m_isExportDue = isAskedForAgain || !isWritten;
    qCDebug(queueLog, "%zu messages %s", m_notifications.records().size(), isWritten ? "saved" : "not saved");
    if (isAskedForAgain) {
        exportNotificationsToFile();
        return;
    }
    // Not in the middle of a delivery, which the agent's end may cut off: what is still to come must be sent again.
    if (isWritten && m_deliveries == 0) {
        m_lastMesID.store();
    }
    if (m_deliveries == 0 && std::exchange(m_isFinishDue, false)) {
        finishDelivery();
    }
}

void KivNotificationManager::beginDelivery()
{
    ++m_deliveries;
}

void KivNotificationManager::endDelivery() noexcept
{
    if (--m_deliveries > 0) {
        return;
    }
    const std::lock_guard hold(m_notificationsLock);
    m_isShownRecordToSave = m_isShownRecordToSave || m_isExportDue;
    if (m_isExportDue) {
        exportNotificationsToFile();
    }
    m_isFinishDue = m_writer.isWriting();
    if (!m_isFinishDue) {
        finishDelivery();
    }
}

void KivNotificationManager::finishDelivery() noexcept
{
    // Not when there was no room for the queue: the feed, told of the id, would not send the messages again.
    if (!m_isExportDue) {
        m_lastMesID.store();
    }
    const bool isToBeSaved = std::exchange(m_isShownRecordToSave, false);
    // Only now, and in no file before: a message that brings the agent down as it is shown must not come again.
    if (const std::shared_ptr<KivNotification> record = std::exchange(m_recordToShow, nullptr)) {
        showFirstRecord(record);
        if (isToBeSaved) {
            exportNotificationsToFile();
        }
    }
}

void KivNotificationManager::showFirstRecord(const std::shared_ptr<KivNotification> &record) noexcept
{
    try {
        const ReadWriteLock::Hold hold = m_rwLock.lockForWriting();
        if (!hold) {
            tellWhyNothingIsShown(hold);
        } else if (m_properties.shouldShowNotification(*record)) {
            displayNotification(record);
        }
    } catch (const std::exception &problem) {
        qCWarning(queueLog, "a message cannot be shown: %s", problem.what());
    }
}

KivNotificationWindow *KivNotificationManager::notificationWindow() const noexcept
{
    return m_notificationWindow;
}

void KivNotificationManager::windowWillClose(KivNotificationWindow &)
{
    if (m_notificationWindow) {
        const std::shared_ptr<KivNotification> record = m_notificationWindow->notification();
        if (record->messageRepeat() == 0) {
            const std::lock_guard hold(m_notificationsLock);
            m_notifications.remove(*record);
        }
        m_notificationWindow->setDelegate(nullptr);
        m_notificationWindow = nullptr;
    }
    exportNotificationsToFile();
    const auto &records = m_notifications.records();
    if (!records.empty() && records.front()->messagePriority() == kPriorityInstant) {
        forceNotification();
    }
}

void KivNotificationManager::windowDidMove(KivNotificationWindow &window)
{
    const NSSize placedOn = prevScreenSize;
    const NSRect screen = mainScreen();
    const NSRect frame = window.frame();
    const NSPoint wanted = getWindowPoint();
    switch (reactionTo({.prevScreenSize = placedOn,
                        .screenSize = screen.size,
                        .popUpScreen = window.screenFrame(),
                        .mainScreen = screen,
                        .wanted = wanted,
                        .actual = frame.origin})) {
    case PopUpReaction::Nothing:
        return;
    case PopUpReaction::MoveThere:
        qCDebug(popUpLog) << "the screen has changed: it goes to" << wanted.x << wanted.y;
        window.setFrame({wanted, frame.size});
        return;
    case PopUpReaction::Recreate:
        qCDebug(popUpLog) << "something has moved it: it is made anew at" << wanted.x << wanted.y;
        recreateNotificaionWindow();
        return;
    }
}

void KivNotificationManager::recreateNotificaionWindow()
{
    if (!m_notificationWindow) {
        return;
    }
    const std::shared_ptr<KivNotification> record = m_notificationWindow->notification();
    record->setLastShowDate(QDateTime::fromMSecsSinceEpoch(0, inUtc)); // Never.
    record->setWasDisplayed(false);
    // Without its owner: the user has not closed it, so the message is not done with.
    m_notificationWindow->setDelegate(nullptr);
    m_notificationWindow->close();
    if (const ReadWriteLock::Hold hold = m_rwLock.lockForWriting()) {
        m_notificationWindow = nullptr;
        displayNotification(record);
    } else {
        tellWhyNothingIsShown(hold);
    }
}
