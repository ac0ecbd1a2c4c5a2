#pragma once

#include "notify/rules/Installation.h"

#include <QDateTime>
#include <QLatin1String>

#include <optional>

class KivNotification;

/// Whether `record` is addressed to `installation` and may be shown on the local day of `now`: level, product, edition,
/// product version, build date, system version and days, in this order, up to the first that does not fit, whose name
/// in the feed is the result; nothing when all fit. The record's system code does not count.
/// Throws std::out_of_range when it comes to compare a version that has no second component. Reentrant.
[[nodiscard]] std::optional<QLatin1String> whyNotRelevant(const KivNotification &record,
                                                          const Installation &installation, const QDateTime &now);

/// Whether all fit. Throws as above. Reentrant.
[[nodiscard]] inline bool notificationIsRelevant(const KivNotification &record, const Installation &installation,
                                                 const QDateTime &now)
{
    return !whyNotRelevant(record, installation, now);
}
