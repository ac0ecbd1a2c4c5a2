#pragma once

#include <QDateTime>
#include <QString>

/// The start of the day that the feed writes as month/day/year, in Eastern Standard Time: five hours behind UTC, in
/// summer, too. Month and day have one or two digits, the year has four. Nil (an invalid date) for anything else, a
/// blank before or after it included.
///
/// The offset is fixed because the feed's authors write their days in EST as its name says; a time zone with a summer
/// time would begin the days from March to November an hour too early. Reentrant.
[[nodiscard]] QDateTime dateFromString(const QString &text);
