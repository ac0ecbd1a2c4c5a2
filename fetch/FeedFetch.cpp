#include "fetch/FeedFetch.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QNetworkAccessManager>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <unistd.h>

namespace
{

/// As the agent's own lines about the feed, which the same switch asks for.
Q_LOGGING_CATEGORY(feedLog, "kiv.feed", QtWarningMsg)

/// How much of an answer Qt holds while nobody takes it.
constexpr qint64 maxBufferedBytes = qint64{1024} * 1024;

constexpr int usageError = 2;

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

/// Aborts the request once it has made no progress for so long. Qt's own time-out ends with the first redirect: see
/// platform/linux/workarounds/RedirectTimeout.h.
void abortOnceSilentFor(QNetworkReply *connection, std::chrono::milliseconds timeout)
{
    auto *const silence = new QTimer(connection);
    silence->setSingleShot(true);
    silence->callOnTimeout(connection, &QNetworkReply::abort);
    const auto progress = [silence, timeout] { silence->start(timeout); };
    QObject::connect(connection, &QNetworkReply::redirected, silence, progress);
    QObject::connect(connection, &QNetworkReply::metaDataChanged, silence, progress);
    QObject::connect(connection, &QNetworkReply::readyRead, silence, progress);
    QObject::connect(connection, &QNetworkReply::finished, silence, &QTimer::stop);
    progress();
}

/// However steadily it trickles in.
void abortAfter(QNetworkReply *connection, std::chrono::milliseconds maxDuration)
{
    auto *const whole = new QTimer(connection);
    whole->setSingleShot(true);
    whole->callOnTimeout(connection, &QNetworkReply::abort);
    whole->start(maxDuration);
}

/// Nothing for other arguments than the two.
std::optional<std::chrono::milliseconds> timeoutOf(const QStringList &arguments)
{
    bool isNumber = false;
    const int number = arguments.value(2).toInt(&isNumber);
    return arguments.size() == 3 && isNumber && number >= 0 ? std::optional(std::chrono::milliseconds(number))
                                                            : std::nullopt;
}

void write(const QByteArray &bytes)
{
    // Waits for who reads, so that no more is asked of the server than is taken. When that has gone, the process ends
    // by the signal.
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
    std::fflush(stdout);
}

void writeHead(const QNetworkReply &connection)
{
    const int status = connection.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (isRedirect(status) && connection.hasRawHeader("Location")) {
        return; // Qt goes on to the answer proper, or fails the request.
    }
    write(QByteArray::number(status) + ' ' + connection.rawHeader("Content-Type").replace('\n', ' ') + '\n');
}

/// Whether less of the body has come than was promised (RFC 9112, section 8), whatever Qt makes of the connection's
/// end: it does not always count it as an error. What Qt decompresses has no length.
bool isCut(const QNetworkReply &connection, qint64 bodyBytes)
{
    const QVariant length = connection.header(QNetworkRequest::ContentLengthHeader);
    return length.isValid() && bodyBytes < length.toLongLong();
}

/// Why the request has failed; empty when it has not.
QString failure(const QNetworkReply &connection, qint64 bodyBytes)
{
    if (connection.error() != QNetworkReply::NoError) {
        return connection.errorString();
    }
    return isCut(connection, bodyBytes) ? QStringLiteral("the answer has been cut") : QString();
}

} // namespace

void fetchFeed(const QStringList &arguments, std::chrono::milliseconds maxDuration)
{
    const std::optional<std::chrono::milliseconds> timeout = timeoutOf(arguments);
    if (!timeout) {
        std::fputs("usage: kivfetch ADDRESS MILLISECONDS\n", stderr);
        std::exit(usageError);
    }
    const QUrl address = QUrl::fromEncoded(arguments.at(1).toLatin1());

    QSocketNotifier asker(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&asker, &QSocketNotifier::activated, [] { QCoreApplication::exit(EXIT_FAILURE); });

    QNetworkAccessManager network;
    QNetworkProxyFactory::setUseSystemConfiguration(true);
    QNetworkReply *const connection = network.get(plainRequest(address));
    connection->setReadBufferSize(maxBufferedBytes);
    abortOnceSilentFor(connection, *timeout);
    abortAfter(connection, maxDuration);
    QObject::connect(connection, &QNetworkReply::metaDataChanged, connection, [connection] { writeHead(*connection); });
    qint64 bodyBytes = 0;
    QObject::connect(connection, &QNetworkReply::readyRead, connection, [connection, &bodyBytes] {
        const QByteArray bytes = connection->readAll();
        bodyBytes += bytes.size();
        write(bytes);
    });
    QObject::connect(
        connection, &QNetworkReply::finished, connection,
        [connection, &bodyBytes] {
            const QString reason = failure(*connection, bodyBytes);
            if (!reason.isEmpty()) {
                qCDebug(feedLog) << "no whole answer:" << reason;
            }
            QCoreApplication::exit(reason.isEmpty() ? EXIT_SUCCESS : EXIT_FAILURE);
        },
        Qt::QueuedConnection); // It may have ended before the loop begins.
    const int status = QCoreApplication::exec();
    // Whole, and at once: at its end the application would wait for its threads, and one that looks up a name may take
    // minutes.
    std::fflush(stdout);
    std::_Exit(status);
}
