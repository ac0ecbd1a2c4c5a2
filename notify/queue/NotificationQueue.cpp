#include "notify/queue/NotificationQueue.h"

#include "notify/record/KivNotification.h"
#include "platform/LogCategories.h"
#include "platform/data/PropertyList.h"

#include <algorithm>
#include <utility>

namespace
{

/// Both are asked, for of an instant and another record without id only the one denies that they are equal.
bool areEqual(const KivNotification &one, const KivNotification &another)
{
    return one.isEqual(another) && another.isEqual(one);
}

/// A record is always found by itself, though an instant one equals nothing: it could never be removed otherwise.
auto equals(const KivNotification &record)
{
    return [&record](const std::shared_ptr<KivNotification> &queued) {
        return queued.get() == &record || areEqual(*queued, record);
    };
}

} // namespace

void NotificationQueue::add(std::shared_ptr<KivNotification> record)
{
    if (contains(*record)) {
        qCDebug(queueLog) << "message" << record->messageId() << "waits already";
        return;
    }
    const auto isLess = [&record](const std::shared_ptr<KivNotification> &queued) {
        return queued->messagePriority() < record->messagePriority();
    };
    const qsizetype bytes = PropertyList::toXml(record->exportToDictionary()).size();
    m_entries[record.get()] = {bytes, record->messageId()};
    m_byId.insert(record->messageId(), record.get());
    m_allBytes += bytes;
    m_records.insert(std::ranges::find_if(m_records, isLess), std::move(record));
}

void NotificationQueue::dropBeyond(std::size_t records, qsizetype bytes)
{
    while (!m_records.empty() && (m_records.size() > records || m_allBytes > bytes)) {
        const auto isLeastUrgent = [lowest = m_records.back()->messagePriority()](const auto &queued) {
            return queued->messagePriority() == lowest;
        };
        const auto oldest = std::ranges::find_if(m_records, isLeastUrgent);
        qCDebug(queueLog) << "message" << (*oldest)->messageId() << "is dropped: the queue is full";
        forget(**oldest);
        m_records.erase(oldest);
    }
}

void NotificationQueue::forget(const KivNotification &record)
{
    const auto entry = m_entries.find(&record);
    m_allBytes -= entry->second.bytes;
    m_byId.remove(entry->second.id, &record);
    m_entries.erase(entry);
}

void NotificationQueue::remove(const KivNotification &record)
{
    // In two steps, for it may be the queue that keeps the record alive.
    const auto removed =
        std::stable_partition(m_records.begin(), m_records.end(),
                              [isEqual = equals(record)](const auto &queued) { return !isEqual(queued); });
    std::for_each(removed, m_records.end(), [this](const auto &queued) { forget(*queued); });
    m_records.erase(removed, m_records.end());
}

bool NotificationQueue::contains(const KivNotification &record) const
{
    if (m_entries.contains(&record)) {
        return true;
    }
    const auto [first, last] = m_byId.equal_range(record.messageId());
    return std::any_of(first, last, [&record](const KivNotification *queued) { return areEqual(*queued, record); });
}
