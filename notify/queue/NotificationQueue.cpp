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
    const Entry &entry = m_entries[record.get()] = {
        .bytes = bytes, .id = record->messageId(), .isHint = record->messagePriority() == kPriorityInstant};
    m_byId.insert(entry.id, record.get());
    Load &load = loadOf(entry);
    ++load.records;
    load.bytes += bytes;
    m_records.insert(std::ranges::find_if(m_records, isLess), std::move(record));
}

void NotificationQueue::dropBeyond(const Load &limit)
{
    // However urgent: all others would have to go before it, and then it would go as well.
    const auto hasNoRoomAlone = [this, &limit](const auto &queued) {
        const Entry &entry = m_entries.at(queued.get());
        return !entry.isHint && entry.bytes > limit.bytes;
    };
    while (m_messages.records > limit.records || m_messages.bytes > limit.bytes) {
        auto dropped = m_records.end();
        if (m_messages.bytes > limit.bytes) {
            dropped = std::ranges::find_if(m_records, hasNoRoomAlone);
        }
        if (dropped == m_records.end()) {
            dropped = oldestOfTheLeastUrgent();
        }
        qCDebug(queueLog) << "message" << (*dropped)->messageId() << "is dropped: the queue is full";
        forget(**dropped);
        m_records.erase(dropped);
    }
}

NotificationQueue::Place NotificationQueue::oldestOfTheLeastUrgent()
{
    const auto isMessage = [this](const auto &queued) { return !m_entries.at(queued.get()).isHint; };
    const auto last = std::find_if(m_records.rbegin(), m_records.rend(), isMessage);
    const auto isLeastUrgent = [&isMessage, lowest = (*last)->messagePriority()](const auto &queued) {
        return queued->messagePriority() == lowest && isMessage(queued);
    };
    return std::ranges::find_if(m_records, isLeastUrgent);
}

void NotificationQueue::forget(const KivNotification &record)
{
    const auto entry = m_entries.find(&record);
    Load &load = loadOf(entry->second);
    --load.records;
    load.bytes -= entry->second.bytes;
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

qsizetype NotificationQueue::bytes(Hints hints) const noexcept
{
    return m_messages.bytes + (hints == Hints::Include ? m_hints.bytes : 0);
}

QVariantList NotificationQueue::exported(Hints hints, const KivNotification *except) const
{
    QVariantList list;
    list.reserve(static_cast<qsizetype>(m_records.size()));
    for (const auto &record : m_records) {
        if (record.get() != except && (hints == Hints::Include || !m_entries.at(record.get()).isHint)) {
            list.append(record->exportToDictionary());
        }
    }
    return list;
}

bool NotificationQueue::contains(const KivNotification &record) const
{
    if (m_entries.contains(&record)) {
        return true;
    }
    const auto [first, last] = m_byId.equal_range(record.messageId());
    return std::any_of(first, last, [&record](const KivNotification *queued) { return areEqual(*queued, record); });
}
