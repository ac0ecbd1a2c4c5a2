#include "notify/feed/FeedDate.h"

#include <QRegularExpression>

QDateTime dateFromString(const QString &text)
{
    static const QRegularExpression monthDayYear(QStringLiteral("\\A([0-9]{1,2})/([0-9]{1,2})/([0-9]{4})\\z"));
    const QRegularExpressionMatch match = monthDayYear.match(text);
    const QDate day(match.capturedView(3).toInt(), match.capturedView(1).toInt(), match.capturedView(2).toInt());
    constexpr int secondsFromUtc = -5 * 60 * 60;
    return day.isValid() ? QDateTime(day, QTime(0, 0), Qt::OffsetFromUTC, secondsFromUtc) : QDateTime();
}
