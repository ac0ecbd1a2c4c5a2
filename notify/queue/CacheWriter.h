#pragma once

#include "notify/queue/NotificationCache.h"

#include <QObject>

#include <functional>
#include <future>

/// Writes the cache file without keeping the user waiting: a list of the usual size at once, which takes less than a
/// frame, and a long one in a thread of its own. One at a time. To be used on the main thread, as an event loop runs
/// there.
class CacheWriter final
{
public:
    /// A list that takes more than this in the file is a long one. 1,000 messages of 1 kB take 84 ms to write, and 15
    /// MB 370.
    static constexpr qsizetype maxBytesAtOnce = qsizetype{256} * 1024;

    /// `done` is told on the main thread after each list whether it is in the file. `cache` must outlive this object;
    /// while it is writing nobody else may use it.
    CacheWriter(NotificationCache &cache, std::function<void(bool isWritten)> done);
    /// Waits for the thread. Nobody is told any more.
    ~CacheWriter() = default;
    CacheWriter(const CacheWriter &) = delete;
    CacheWriter &operator=(const CacheWriter &) = delete;

    /// Writes the list, of about that many bytes, and tells `done`: before this returns when it is short. Not while it
    /// is writing.
    void write(const QVariantList &list, qsizetype bytes);

    /// Whether a long list has been begun, and `done` has not been told.
    [[nodiscard]] bool isWriting() const noexcept { return m_outcome.valid(); }

    /// Returns once it is not writing, `done` has been told, and nothing that it has begun is being written either.
    void wait();

private:
    [[nodiscard]] bool hasWritten(const QVariantList &list) noexcept;
    void takeOutcome();

    NotificationCache &m_cache;
    std::function<void(bool)> m_done;
    QObject m_context; ///< Through which the thread comes back to this one.
    int m_begun = 0;   ///< How many long lists.
    std::future<bool> m_outcome;
};
