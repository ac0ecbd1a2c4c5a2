#include "notify/record/DistantFuture.h"

#include "platform/data/UtcTime.h"

QDateTime distantFuture()
{
    return QDateTime(QDate(1'000'000, 1, 1), QTime(0, 0), inUtc);
}
