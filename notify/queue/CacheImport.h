#pragma once

#include "notify/queue/NotificationCache.h"

#include <QDeadlineTimer>
#include <QObject>
#include <QVariantList>

#include <chrono>
#include <functional>
#include <future>
#include <memory>

class KivNotification;

/// Reads the cache file without keeping the user waiting: one of the usual size at once. A long one is read and decoded
/// in a thread of its own, and its records are made and handed over in several iterations of the event loop. To be used
/// on the main thread, as an event loop runs there.
class CacheImport final
{
public:
    /// Told of each record, in the order of the file, and at the end that there are no more.
    struct Receiver {
        std::function<void(const std::shared_ptr<KivNotification> &)> take; ///< May throw std::out_of_range to refuse.
        std::function<void()> done;
    };

    /// How long records are handed over before the event loop has its next turn; at least one is.
    static constexpr std::chrono::milliseconds maxShareOfATurn{10};

    /// `cache` must outlive this object; while it is under way nobody else may use it.
    CacheImport(NotificationCache &cache, Receiver receiver, std::chrono::milliseconds share = maxShareOfATurn);
    /// Waits for the thread. Nobody is told any more.
    ~CacheImport() = default;
    CacheImport(const CacheImport &) = delete;
    CacheImport &operator=(const CacheImport &) = delete;

    /// Begins, and is over before this returns when the file takes no more than CacheWriter::maxBytesAtOnce. An entry
    /// is left out that is no record, or is refused; all are when there is no memory for a long file, which the cache
    /// then keeps aside. Once.
    void begin();

    /// From the beginning until `done` is told.
    [[nodiscard]] bool isUnderWay() const noexcept { return m_isUnderWay; }

    /// Waits for the thread, hands over at once what is still to come, and tells `done`. Nothing happens when it is not
    /// under way.
    void finish();

    /// Waits for the thread, hands nothing more over, and tells nobody.
    void abandon();

private:
    [[nodiscard]] bool hasBegunThread();
    void goOn();
    void takeDecoded();
    void handOver(const QDeadlineTimer &share);
    void accept(const QVariant &entry) const;
    void end();

    NotificationCache &m_cache;
    const Receiver m_receiver;
    const std::chrono::milliseconds m_share;
    bool m_isUnderWay = false;
    QVariantList m_entries;
    qsizetype m_next = 0; ///< Among them.
    QObject m_context;    ///< Through which the thread comes back to this one.
    std::future<QVariantList> m_decoded;
};
