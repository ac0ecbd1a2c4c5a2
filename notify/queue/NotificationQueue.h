#pragma once

#include <QMultiHash>
#include <QString>

#include <memory>
#include <unordered_map>
#include <vector>

class KivNotification;

/// The messages that have been accepted, in the order in which they are to be shown: by descending priority, and first
/// come, first served within one priority. Owns its records together with whoever else holds them, who leave the id
/// alone. Records are never null. Not thread-safe.
class NotificationQueue final
{
public:
    /// Puts `record` behind all of its own or a higher priority. A record whose equal is queued is ignored: the queued
    /// one keeps its place and its state.
    void add(std::shared_ptr<KivNotification> record);

    /// Removes whatever equals `record`.
    void remove(const KivNotification &record);

    /// Drops the oldest of the least urgent records, one after the other, until there are no more than `records`, and
    /// they took no more than `bytes` in a cache file when they were added.
    void dropBeyond(std::size_t records, qsizetype bytes);

    /// How many bytes the records took in a cache file when they were added.
    [[nodiscard]] qsizetype bytes() const noexcept { return m_allBytes; }

    [[nodiscard]] bool contains(const KivNotification &record) const;
    /// Valid until the next change.
    [[nodiscard]] const std::vector<std::shared_ptr<KivNotification>> &records() const noexcept { return m_records; }

private:
    /// As it was when the record was added.
    struct Entry {
        qsizetype bytes = 0;
        QString id;
    };

    void forget(const KivNotification &record);

    std::vector<std::shared_ptr<KivNotification>> m_records;
    std::unordered_map<const KivNotification *, Entry> m_entries; ///< Of each record.
    QMultiHash<QString, const KivNotification *> m_byId;
    qsizetype m_allBytes = 0;
};
