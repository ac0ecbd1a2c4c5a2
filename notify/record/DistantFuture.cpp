#include "notify/record/DistantFuture.h"

QDateTime distantFuture()
{
    return QDateTime(QDate(1'000'000, 1, 1), QTime(0, 0), Qt::UTC);
}
