#pragma once

#include "notify/rules/Installation.h"

#include <QDateTime>

class KivNotification;

/// Whether `record` is addressed to `installation` and may be shown on the local day of `now`: level, product, edition,
/// product version, build date, system version and days, in this order, up to the first that does not fit. The record's
/// system code does not count.
/// Throws std::out_of_range when it comes to compare a version that has no second component. Reentrant.
[[nodiscard]] bool notificationIsRelevant(const KivNotification &record, const Installation &installation,
                                          const QDateTime &now);
