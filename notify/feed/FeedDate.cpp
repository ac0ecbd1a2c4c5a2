#include "notify/feed/FeedDate.h"

#include "platform/data/UtcTime.h"

#include <QRegularExpression>

QDateTime dateFromString(const QString &text)
{
    static const QRegularExpression monthDayYear(QStringLiteral("\\A([0-9]{1,2})/([0-9]{1,2})/([0-9]{4})\\z"));
    const QRegularExpressionMatch match = monthDayYear.match(text);
    const QDate day(match.capturedView(3).toInt(), match.capturedView(1).toInt(), match.capturedView(2).toInt());
    constexpr int hoursBehindUtc = 5;
    return day.isValid() ? QDateTime(day, QTime(hoursBehindUtc, 0), inUtc) : QDateTime();
}
