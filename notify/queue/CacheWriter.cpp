#include "notify/queue/CacheWriter.h"

#include <exception>
#include <system_error>
#include <utility>

CacheWriter::CacheWriter(NotificationCache &cache, std::function<void(bool)> done)
    : m_cache(cache)
    , m_done(std::move(done))
{
}

void CacheWriter::write(const QVariantList &list, qsizetype bytes)
{
    if (bytes <= maxBytesAtOnce) {
        m_done(hasWritten(list));
        return;
    }
    const auto work = [this, number = ++m_begun, list = QVariantList(list)]() mutable {
        const bool isWritten = hasWritten(list);
        list.clear(); // Here, and not in the main thread, when it takes the outcome.
        const auto tell = [this, number] {
            if (number == m_begun) { // Else somebody has waited for it, and another one has begun.
                takeOutcome();
            }
        };
        QMetaObject::invokeMethod(&m_context, tell, Qt::QueuedConnection);
        return isWritten;
    };
    try {
        m_outcome = std::async(std::launch::async, work);
    } catch (const std::system_error &) { // There is no thread to be had.
        m_done(hasWritten(list));
    }
}

bool CacheWriter::hasWritten(const QVariantList &list) noexcept
{
    try {
        return m_cache.write(list);
    } catch (const std::exception &) { // Not even memory for a warning.
        return false;
    }
}

void CacheWriter::wait()
{
    while (isWriting()) {
        takeOutcome();
    }
}

void CacheWriter::takeOutcome()
{
    if (isWriting()) {
        m_done(m_outcome.get());
    }
}
