#include "notify/queue/CacheWriter.h"

#include <utility>

CacheWriter::CacheWriter(NotificationCache &cache, std::function<void(bool)> done)
    : m_cache(cache)
    , m_done(std::move(done))
{
}

void CacheWriter::write(const QVariantList &list, qsizetype bytes)
{
    if (bytes <= maxBytesAtOnce) {
        m_done(m_cache.write(list));
        return;
    }
    m_outcome = std::async(std::launch::async, [this, number = ++m_begun, list = QVariantList(list)]() mutable {
        const bool isWritten = m_cache.write(list);
        list.clear(); // Here, and not in the main thread, when it takes the outcome.
        const auto tell = [this, number] {
            if (number == m_begun) { // Else somebody has waited for it, and another one has begun.
                takeOutcome();
            }
        };
        QMetaObject::invokeMethod(&m_context, tell, Qt::QueuedConnection);
        return isWritten;
    });
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
