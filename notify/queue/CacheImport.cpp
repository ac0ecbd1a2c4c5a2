#include "notify/queue/CacheImport.h"

#include "notify/queue/CacheWriter.h"
#include "notify/record/KivNotification.h"
#include "notify/record/UndefinedKeyException.h"
#include "platform/LogCategories.h"

#include <QScopeGuard>

#include <new>
#include <stdexcept>
#include <system_error>
#include <utility>

CacheImport::CacheImport(NotificationCache &cache, Receiver receiver, std::chrono::milliseconds share)
    : m_cache(cache)
    , m_receiver(std::move(receiver))
    , m_share(share)
{
}

void CacheImport::begin()
{
    m_isUnderWay = true;
    if (m_cache.fileSize() <= CacheWriter::maxBytesAtOnce || !hasBegunThread()) {
        m_entries = m_cache.read();
        finish();
    }
}

bool CacheImport::hasBegunThread()
{
    const auto work = [this] {
        const auto tell = qScopeGuard([this] {
            QMetaObject::invokeMethod(
                &m_context, [this] { goOn(); }, Qt::QueuedConnection);
        });
        try {
            return m_cache.read();
        } catch (const std::bad_alloc &) {
            return QVariantList();
        }
    };
    try {
        m_decoded = std::async(std::launch::async, work);
        return true;
    } catch (const std::system_error &) { // There is no thread to be had.
        return false;
    }
}

void CacheImport::goOn()
{
    if (!m_isUnderWay) {
        return; // Somebody could not wait for this turn.
    }
    takeDecoded();
    if (m_next == m_entries.size()) {
        end();
        return;
    }
    // After an exception, too: it concerns one record.
    const auto nextTurn = qScopeGuard([this] {
        QMetaObject::invokeMethod(
            &m_context, [this] { goOn(); }, Qt::QueuedConnection);
    });
    handOver(QDeadlineTimer(m_share, Qt::PreciseTimer));
}

void CacheImport::finish()
{
    if (m_isUnderWay) {
        takeDecoded();
        handOver(QDeadlineTimer(QDeadlineTimer::Forever));
        end();
    }
}

void CacheImport::abandon()
{
    m_isUnderWay = false;
    if (m_decoded.valid()) {
        m_decoded.wait();
    }
}

void CacheImport::takeDecoded()
{
    if (m_decoded.valid()) {
        m_entries = m_decoded.get();
    }
}

void CacheImport::handOver(const QDeadlineTimer &share)
{
    do {
        if (m_next == m_entries.size()) {
            return;
        }
        // Taken out, so that the list is not all freed in one turn.
        accept(std::exchange(m_entries[m_next++], QVariant()));
    } while (!share.hasExpired());
}

void CacheImport::accept(const QVariant &entry) const
{
    if (entry.typeId() != QMetaType::QVariantMap) {
        qCDebug(queueLog, "an entry of the cache is no message");
        return;
    }
    try {
        m_receiver.take(std::make_shared<KivNotification>(entry.toMap()));
    } catch (const UndefinedKeyException &unknown) { // Of another version of the agent, or of nobody's.
        qCDebug(queueLog) << "a message of the cache is left out:" << QString::fromUtf8(unknown.what());
    } catch (const std::out_of_range &) {
        qCDebug(queueLog, "a message of the cache is left out: it has a version that cannot be compared");
    }
}

void CacheImport::end()
{
    m_isUnderWay = false;
    m_entries.clear();
    m_next = 0;
    m_receiver.done();
}
