#include "notify/feed/KivNotificationReceiver.h"

#include "notify/feed/FeedConnection.h"
#include "notify/feed/FeedRequest.h"
#include "notify/rules/KivNotificationProperties.h"
#include "platform/Bundle.h"
#include "platform/LogCategories.h"

#include <QScopeGuard>
#include <QTimer>

#include <system_error>
#include <utility>

namespace
{

/// The most bytes that are kept, of one answer or of several after malformed ones. Far more than messages for one
/// pop-up at a time ever need.
constexpr qsizetype maxAnswerBytes = qsizetype{16} * 1024 * 1024;

FeedRequest requestOf(const KivNotificationProperties &properties, const Bundle &bundle)
{
    return {.baseAddress = bundle.infoString(QStringLiteral("KIVSupportMessages")),
            .productCode = properties.productCode(),
            .productVersion = properties.productVersion(),
            .buildDate = properties.buildDate(),
            .systemCode = properties.systemCode(),
            .systemVersion = properties.systemVersion(),
            .messageLevel = properties.messageLevel(),
            .licenseType = properties.licenseType(),
            .lastMesID = properties.lastMesID()};
}

} // namespace

KivNotificationReceiver::KivNotificationReceiver(const KivNotificationProperties &properties, const Bundle &bundle,
                                                 NotificationSink &sink, FeedTiming timing)
    : m_properties(properties)
    , m_bundle(bundle)
    , m_sink(sink)
    , m_timing(timing)
    , m_parser([&sink](const std::shared_ptr<KivNotification> &record) { sink.enqueueNotification(record); })
{
}

KivNotificationReceiver::~KivNotificationReceiver() = default;

void KivNotificationReceiver::recieveNotifications()
{
    receiveNextNotification();
    m_timer = std::make_unique<QTimer>();
    m_timer->setTimerType(Qt::PreciseTimer);
    m_timer->callOnTimeout(this, &KivNotificationReceiver::receiveNextNotification);
    m_timer->start(m_timing.interval);
}

void KivNotificationReceiver::stop()
{
    m_timer.reset();
    if (m_opened.valid()) {
        m_opened.wait();
    }
}

void KivNotificationReceiver::receiveNextNotification()
{
    const FeedRequest request = requestOf(m_properties, m_bundle);
    const QUrl address = feedAddress(request);
    if (!address.isValid()) {
        if (request.baseAddress.isEmpty()) {
            qCDebug(feedLog, "the bundle names no feed");
        } else {
            qCWarning(feedLog) << "no messages come: KIVSupportMessages is no address of the web:"
                               << request.baseAddress;
        }
        return;
    }
    qCDebug(feedLog) << "fetches" << address.toString(QUrl::RemoveUserInfo);
    letGoOfCancelled();
    auto *const connection =
        new FeedConnection(m_bundle.pathForAuxiliaryExecutable(QStringLiteral("kivfetch")), address,
                           {.silence = m_timing.timeout, .whole = m_timing.maxDuration}, this);
    connect(connection, &FeedConnection::receivedResponse, this,
            [this, connection](int status, const QByteArray &contentType) {
                connectionDidReceiveResponse(connection, status, contentType);
            });
    connect(connection, &FeedConnection::receivedData, this,
            [this, connection](const QByteArray &bytes) { connectionDidReceiveData(connection, bytes); });
    // Queued, so that what the parse throws leaves the event loop and nothing of the connection's own.
    connect(
        connection, &FeedConnection::ended, this,
        [this, connection](FeedConnection::End end) { connectionDidEnd(connection, end); }, Qt::QueuedConnection);
    m_connection = connection;
    connection->start();
}

void KivNotificationReceiver::parseNotificationData()
{
    if (m_delivery) {
        m_isParseDue = true;
        return;
    }
    m_delivery.emplace(m_sink);
    m_parsedBytes = m_data.size();
    if (m_data.size() <= maxBytesAtOnce || !hasBegunThread()) {
        m_parser.begin(m_data);
        parseOn();
    }
}

bool KivNotificationReceiver::hasBegunThread()
{
    const auto work = [this, data = m_data] {
        const auto tell = qScopeGuard(
            [this] { QMetaObject::invokeMethod(this, &KivNotificationReceiver::parseOpened, Qt::QueuedConnection); });
        return FeedParser::open(data);
    };
    try {
        m_opened = std::async(std::launch::async, work);
        return true;
    } catch (const std::system_error &) { // There is no thread to be had.
        return false;
    }
}

void KivNotificationReceiver::parseOpened()
{
    // There may have been no memory for it: the delivery must not stay open, for nothing is saved until its end.
    auto atAnException = qScopeGuard([this] { endParse(); });
    m_parser.begin(m_opened.get());
    atAnException.dismiss();
    parseOn();
}

void KivNotificationReceiver::parseOn()
{
    auto atTheEnd = qScopeGuard([this] { endParse(); });
    const std::optional<FeedParser::Outcome> outcome = m_parser.read(QDeadlineTimer(maxShareOfATurn, Qt::PreciseTimer));
    if (!outcome) {
        atTheEnd.dismiss();
        QMetaObject::invokeMethod(this, &KivNotificationReceiver::parseOn, Qt::QueuedConnection);
    } else if (outcome == FeedParser::Outcome::EndOfDocument) {
        qCDebug(feedLog) << "the document of" << m_parsedBytes << "bytes has been read";
        m_data = m_data.sliced(m_parsedBytes); // In memory of its own: a day passes before the next answer.
    } else {
        qCDebug(feedLog) << "the" << m_data.size() << "bytes are kept, and the next answer is added to them";
    }
}

void KivNotificationReceiver::endParse()
{
    m_delivery.reset();
    if (std::exchange(m_isParseDue, false)) {
        QMetaObject::invokeMethod(this, &KivNotificationReceiver::parseNotificationData, Qt::QueuedConnection);
    }
}

const std::shared_ptr<KivNotification> &KivNotificationReceiver::notification() const noexcept
{
    return m_parser.notification();
}

void KivNotificationReceiver::connectionDidReceiveResponse(FeedConnection *connection, int status,
                                                           const QByteArray &contentType)
{
    // A character set after the type is refused, too: the feed has never sent one.
    if (status != 200 || !contentType.endsWith("/xml")) {
        qCDebug(feedLog) << "the answer is refused: status" << status << "and type" << QString::fromLatin1(contentType);
        cancel(connection);
    }
}

void KivNotificationReceiver::connectionDidReceiveData(FeedConnection *connection, const QByteArray &bytes)
{
    m_data += bytes;
    if (m_data.size() > maxAnswerBytes) {
        qCDebug(feedLog, "the answer is refused: it is too large");
        cancel(connection);
        m_data.clear(); // Whatever came next, it could not become a document any more.
        m_parsedBytes = 0;
    }
}

void KivNotificationReceiver::connectionDidEnd(FeedConnection *connection, FeedConnection::End end)
{
    letGoOfCancelled();
    connection->deleteLater();
    m_connection = nullptr; // Whichever it was.
    if (end == FeedConnection::End::Failed) {
        qCDebug(feedLog, "the request has failed");
    } else {
        parseNotificationData();
    }
}

void KivNotificationReceiver::letGoOfCancelled()
{
    if (m_isCancelled) {
        m_connection->deleteLater();
        m_connection = nullptr;
        m_isCancelled = false;
    }
}

void KivNotificationReceiver::cancel(FeedConnection *connection)
{
    connection->disconnect(this);
    connection->cancel();
    if (connection == m_connection) {
        m_isCancelled = true;
    } else {
        connection->deleteLater();
    }
}
