#include "notify/rules/DayComparison.h"

QDateTime normalizedDateWithDate(const QDateTime &date)
{
    return date.isValid() ? date.toLocalTime().date().startOfDay() : QDateTime();
}

int compareToDate(const QDateTime &a, const QDateTime &b)
{
    const QDateTime left = normalizedDateWithDate(a);
    const QDateTime right = normalizedDateWithDate(b);
    if (!left.isValid() || !right.isValid()) {
        return 0;
    }
    return static_cast<int>(left > right) - static_cast<int>(left < right);
}
