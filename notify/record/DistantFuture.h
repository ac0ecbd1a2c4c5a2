#pragma once

#include <QDateTime>

/// The date that means "for ever": the first instant of the year 1,000,000, UTC. Later than every date that a feed or
/// file can state, yet far enough from the end of QDateTime's range for a time zone or an interval to be added.
/// A property list keeps it as its own last date, in the year 9999, which no clock of ours will see either.
[[nodiscard]] QDateTime distantFuture();
