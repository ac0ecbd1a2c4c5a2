#include "notify/feed/FeedRequest.h"

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

bool beginsEscape(QStringView text)
{
    const QStringView digits = u"0123456789ABCDEFabcdef";
    return text.size() > 2 && digits.contains(text[1]) && digits.contains(text[2]);
}

/// One '%' that begins no escape would make QUrl take every other one literally, too.
QString withEscapedPercents(const QString &text)
{
    QString escaped;
    for (qsizetype i = 0; i < text.size(); ++i) {
        escaped += text[i];
        if (text[i] == u'%' && !beginsEscape(QStringView(text).sliced(i))) {
            escaped += QLatin1String("25");
        }
    }
    return escaped;
}

} // namespace

QUrl feedAddress(const FeedRequest &request)
{
    const QString text = filledIn(KivNotificationRequest,
                                  {request.baseAddress, request.productCode, request.productVersion, request.buildDate,
                                   request.systemCode, request.systemVersion, request.messageLevel, request.licenseType,
                                   request.lastMesID, QStringLiteral("5")});
    const QUrl url(withEscapedPercents(text), QUrl::TolerantMode);
    const bool isWeb = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    return url.isValid() && isWeb && !url.host().isEmpty() ? url : QUrl();
}
