#pragma once

#include <QMultiHash>
#include <QString>
#include <QVariantList>

#include <cstddef>
#include <memory>
#include <unordered_map>
#include <vector>

class KivNotification;

/// The messages that have been accepted, in the order in which they are to be shown: by descending priority, and first
/// come, first served within one priority. Owns its records together with whoever else holds them, who leave the id
/// alone. Records are never null. Hints are those that are instant when they are added. Not thread-safe.
class NotificationQueue final
{
public:
    struct Load {
        std::size_t records = 0;
        qsizetype bytes = 0; ///< In a cache file, as the records were when they were added.
    };

    /// Puts `record` behind all of its own or a higher priority. A record whose equal is queued is ignored: the queued
    /// one keeps its place and its state.
    void add(std::shared_ptr<KivNotification> record);

    /// Removes whatever equals `record`.
    void remove(const KivNotification &record);

    /// Drops the messages that alone are beyond `limit`, and then the oldest of the least urgent, one after the other,
    /// until they are within it. Hints neither count nor are dropped: what is for the moment takes no room from what is
    /// to be kept.
    void dropBeyond(const Load &limit);

    enum class Hints { Include, LeaveOut };
    /// How many bytes the records took in a cache file when they were added.
    [[nodiscard]] qsizetype bytes(Hints hints) const noexcept;
    /// The records in their dictionary form, in order, without `except` if that is one of them.
    [[nodiscard]] QVariantList exported(Hints hints, const KivNotification *except) const;

    [[nodiscard]] bool contains(const KivNotification &record) const;
    /// Valid until the next change.
    [[nodiscard]] const std::vector<std::shared_ptr<KivNotification>> &records() const noexcept { return m_records; }

private:
    /// As it was when the record was added.
    struct Entry {
        qsizetype bytes = 0;
        QString id;
        bool isHint = false;
    };

    [[nodiscard]] Load &loadOf(const Entry &entry) noexcept { return entry.isHint ? m_hints : m_messages; }

    using Place = std::vector<std::shared_ptr<KivNotification>>::iterator;

    /// There must be a message that is no hint.
    [[nodiscard]] Place oldestOfTheLeastUrgent();
    void forget(const KivNotification &record);

    std::vector<std::shared_ptr<KivNotification>> m_records;
    std::unordered_map<const KivNotification *, Entry> m_entries; ///< Of each record.
    QMultiHash<QString, const KivNotification *> m_byId;
    Load m_messages;
    Load m_hints;
};
