#pragma once

#include <QDateTime>

/// The start of `date`'s day in the local time zone: midnight, or the first instant after it where the clocks skip
/// midnight. Nil for a nil date. Reentrant.
[[nodiscard]] QDateTime normalizedDateWithDate(const QDateTime &date);

/// -1 when `a`'s day in the local time zone is earlier than `b`'s, 0 when it is the same, 1 when it is later.
/// A nil date is on no day, so it is neither earlier nor later than any: 0. Reentrant.
[[nodiscard]] int compareToDate(const QDateTime &a, const QDateTime &b);
