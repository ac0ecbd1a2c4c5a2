#pragma once

#include "notify/feed/FeedConnection.h"
#include "notify/feed/FeedParser.h"
#include "notify/record/NotificationSink.h"

#include <QByteArray>
#include <QObject>

#include <chrono>
#include <future>
#include <memory>
#include <optional>

class Bundle;
class KivNotificationProperties;
class QTimer;

/// Seconds between two requests to the feed: a day.
inline constexpr double requestTimeInterval = 86400.0;

struct FeedTiming final {
    std::chrono::milliseconds interval =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::duration<double>(requestTimeInterval));
    /// How long a request may go without progress before it fails.
    std::chrono::milliseconds timeout = std::chrono::seconds(60);
    /// How long it may take in all. kivfetch gives up a minute before (FetchOptions), unless somebody has stopped it.
    std::chrono::milliseconds maxDuration = std::chrono::minutes(11);
};

/// Fetches the feed of support messages over HTTP, once at start and then daily, and hands its records to the sink.
///
/// Failures are silent: the next attempt is the next tick of the timer. fetch/FeedFetch.h says how a request is made.
/// An answer is cancelled when it, together with the bytes kept of malformed ones before it, exceeds 16 MiB; then none
/// of these bytes are kept. Main thread only.
class KivNotificationReceiver final : public QObject
{
public:
    /// Nothing is sent yet. The collaborators must outlive this object. The bundle's KIVSupportMessages is the feed's
    /// address.
    KivNotificationReceiver(const KivNotificationProperties &properties, const Bundle &bundle, NotificationSink &sink,
                            FeedTiming timing = {});
    ~KivNotificationReceiver() override;

    /// The one of this process, which feeds the shared manager. Made at first use, in shell/SharedInstances.cpp, and
    /// never destroyed.
    [[nodiscard]] static KivNotificationReceiver &sharedInstance();

    /// Sends a first request at once, and one at every interval from now on. The name is spelt so wherever it is
    /// called.
    void recieveNotifications();

    /// Sends one request; none when the address is no http or https URL. One that is still in flight goes on.
    void receiveNextNotification();

    /// Parses the bytes received, in one delivery to the sink, and, at the end of a document, forgets them. After a
    /// malformed one they stay, and the next answer is appended to them. Throws what FeedParser::parse and the sink
    /// throw; the bytes then stay, too.
    ///
    /// What takes longer than maxShareOfATurn goes on in the next iterations of the event loop, from which it then
    /// throws: the user's clicks need not wait for a long document. Of bytes that are being parsed already, and what
    /// has come since, the parse begins after that.
    ///
    /// Called when an answer is complete; what it throws then leaves the event loop's callback.
    void parseNotificationData();

    /// Sends no more requests, and waits for the thread in which a document may be decoded: after this the process may
    /// end.
    void stop();

    /// The record being read; null when none is.
    [[nodiscard]] const std::shared_ptr<KivNotification> &notification() const noexcept;

    /// The last request sent, while it is in flight or after it was cancelled; null when the last one to end had an end
    /// of its own.
    [[nodiscard]] const FeedConnection *connection() const noexcept { return m_connection; }

    /// The longest time, but for the one message that it ends in, that a document is read at once.
    static constexpr std::chrono::milliseconds maxShareOfATurn{10};

    /// A longer document is decoded in a thread of its own: one of 16 MB takes 70 ms.
    static constexpr qsizetype maxBytesAtOnce = qsizetype{256} * 1024;

private:
    [[nodiscard]] bool hasBegunThread();
    void parseOpened();
    void parseOn();
    void endParse();
    void connectionDidReceiveResponse(FeedConnection *connection, int status, const QByteArray &contentType);
    void connectionDidReceiveData(FeedConnection *connection, const QByteArray &bytes);
    void connectionDidEnd(FeedConnection *connection, FeedConnection::End end);
    void letGoOfCancelled();
    void cancel(FeedConnection *connection);

    const KivNotificationProperties &m_properties;
    const Bundle &m_bundle;
    NotificationSink &m_sink;
    FeedTiming m_timing;
    std::unique_ptr<QTimer> m_timer;
    FeedConnection *m_connection = nullptr; ///< Its parent is this.
    bool m_isCancelled = false; ///< Whether m_connection is, and only held until the next one begins or ends.
    QByteArray m_data;
    FeedParser m_parser;
    std::optional<NotificationSink::Delivery> m_delivery; ///< While the first m_parsedBytes of m_data are parsed.
    qsizetype m_parsedBytes = 0;
    bool m_isParseDue = false; ///< After the one that is under way.
    std::future<std::shared_ptr<FeedParser::Reading>> m_opened;
};
