#include "notify/feed/FeedRequest.h"

#include <QRegularExpression>

#include <array>

const QString KivNotificationRequest =
    QStringLiteral("%@?product=%@&version=%@&build_date=%@&system=%@&sysver=%@&level=%@&license=%@&lastId=%@&limit=%@");

namespace
{

/// Not QString::arg, which would take a "%1" in a value for a place of its own.
QString filledIn(const QString &format, const std::array<QString, 10> &values)
{
    const QStringList pieces = format.split(QStringLiteral("%@"));
    QString text = pieces.front();
    for (qsizetype i = 1; i < pieces.size(); ++i) {
        const QString &value = values.at(static_cast<std::size_t>(i - 1));
        text += (value.isNull() ? QStringLiteral("(null)") : value) + pieces.at(i);
    }
    return text;
}

} // namespace

QUrl feedAddress(const FeedRequest &request)
{
    QString text = filledIn(KivNotificationRequest,
                            {request.baseAddress, request.productCode, request.productVersion, request.buildDate,
                             request.systemCode, request.systemVersion, request.messageLevel, request.licenseType,
                             request.lastMesID, QStringLiteral("5")});
    // One '%' that begins no escape makes QUrl take every other one literally, too.
    static const QRegularExpression strayPercent(QStringLiteral("%(?![0-9A-Fa-f]{2})"));
    text.replace(strayPercent, QStringLiteral("%25"));

    const QUrl url(text, QUrl::TolerantMode);
    const bool isWeb = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    return url.isValid() && isWeb && !url.host().isEmpty() ? url : QUrl();
}
