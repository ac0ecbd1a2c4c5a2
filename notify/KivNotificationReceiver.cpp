#include "notify/KivNotificationReceiver.h"

#include "notify/FeedRequest.h"
#include "notify/KivNotificationManager.h"
#include "notify/KivNotificationProperties.h"
#include "notify/NotificationSink.h"
#include "platform/Bundle.h"

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

namespace
{

/// The most bytes that are kept, of one answer or of several after malformed ones. Far more than messages for one
/// pop-up at a time ever need.
constexpr qsizetype mostBytes = 16 * 1024 * 1024;

/// How much of an answer Qt holds while nobody reads it.
constexpr qint64 readBuffer = 1024 * 1024;

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

bool isRedirect(int status)
{
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

QNetworkRequest plainRequest(const QUrl &address)
{
    QNetworkRequest request(address);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    for (const auto attribute :
         {QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::CookieSaveControlAttribute,
          QNetworkRequest::AuthenticationReuseAttribute}) {
        request.setAttribute(attribute, QNetworkRequest::Manual);
    }
    return request;
}

/// Aborts the request once it has made no progress for so long. Qt's own time-out ends with the first redirect (seen in
/// 6.4), after which a silent server would hold the request for ever.
void limitSilence(QNetworkReply *connection, std::chrono::milliseconds timeOut)
{
    auto *const silence = new QTimer(connection);
    silence->setSingleShot(true);
    silence->callOnTimeout(connection, &QNetworkReply::abort);
    const auto progress = [silence, timeOut] { silence->start(timeOut); };
    QObject::connect(connection, &QNetworkReply::redirected, silence, progress);
    QObject::connect(connection, &QNetworkReply::metaDataChanged, silence, progress);
    QObject::connect(connection, &QNetworkReply::readyRead, silence, progress);
    QObject::connect(connection, &QNetworkReply::finished, silence, &QTimer::stop);
    progress();
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

KivNotificationReceiver &KivNotificationReceiver::sharedInstance()
{
    static KivNotificationReceiver &instance = *new KivNotificationReceiver(
        KivNotificationProperties::sharedInstance(), Bundle::main(), KivNotificationManager::sharedInstance());
    return instance;
}

void KivNotificationReceiver::recieveNotifications()
{
    // Not from within start-up: the first https request of a process takes Qt some 60 ms.
    QTimer::singleShot(0, this, &KivNotificationReceiver::receiveNextNotification);
    m_timer = std::make_unique<QTimer>();
    m_timer->setTimerType(Qt::PreciseTimer);
    m_timer->callOnTimeout(this, &KivNotificationReceiver::receiveNextNotification);
    m_timer->start(m_timing.interval);
}

void KivNotificationReceiver::receiveNextNotification()
{
    const QUrl address = feedAddress(requestOf(m_properties, m_bundle));
    if (!address.isValid()) {
        return;
    }
    letGoOfCancelled();
    QNetworkReply *const connection = network().get(plainRequest(address));
    limitSilence(connection, m_timing.timeOut);
    connection->setReadBufferSize(readBuffer);
    connect(connection, &QNetworkReply::metaDataChanged, this,
            [this, connection] { connectionDidReceiveResponse(connection); });
    connect(connection, &QNetworkReply::readyRead, this, [this, connection] { connectionDidReceiveData(connection); });
    // Queued, so that what the parse throws leaves the event loop and nothing of the reply's own.
    connect(
        connection, &QNetworkReply::finished, this, [this, connection] { connectionDidEnd(connection); },
        Qt::QueuedConnection);
    m_connection = connection;
}

void KivNotificationReceiver::parseNotificationData()
{
    const NotificationSink::Delivery delivery(m_sink);
    if (m_parser.parse(m_data) == FeedParser::Outcome::EndOfDocument) {
        m_data.clear();
    }
}

const std::shared_ptr<KivNotification> &KivNotificationReceiver::notification() const noexcept
{
    return m_parser.notification();
}

void KivNotificationReceiver::connectionDidReceiveResponse(QNetworkReply *connection)
{
    const int status = connection->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (isRedirect(status) && connection->hasRawHeader("Location")) {
        return; // Qt goes on to the answer proper, or fails the request.
    }
    // A character set after the type is refused, too: the feed has never sent one.
    if (status != 200 || !connection->rawHeader("Content-Type").endsWith("/xml")) {
        cancel(connection);
    }
}

void KivNotificationReceiver::connectionDidReceiveData(QNetworkReply *connection)
{
    m_data += connection->readAll();
    if (m_data.size() > mostBytes) {
        cancel(connection);
        m_data.clear(); // Whatever came next, it could not become a document any more.
    }
}

void KivNotificationReceiver::connectionDidEnd(QNetworkReply *connection)
{
    letGoOfCancelled();
    connection->deleteLater();
    m_connection = nullptr; // Whichever it was.
    if (connection->error() == QNetworkReply::NoError) {
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

void KivNotificationReceiver::cancel(QNetworkReply *connection)
{
    connection->disconnect(this);
    if (connection == m_connection) {
        m_isCancelled = true;
        // Later: Qt, which is about to report the answer's own error, warns of an end that came before it.
        QMetaObject::invokeMethod(connection, &QNetworkReply::abort, Qt::QueuedConnection);
    } else {
        connection->deleteLater();
    }
}

QNetworkAccessManager &KivNotificationReceiver::network()
{
    if (!m_network) {
        m_network = std::make_unique<QNetworkAccessManager>();
        m_network->setProxy(QNetworkProxy::NoProxy);
    }
    return *m_network;
}
