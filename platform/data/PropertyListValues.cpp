#include "platform/data/PropertyListValues.h"

#include "platform/data/UtcTime.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <limits>

namespace PropertyListValues
{

// QDateTime neither reads nor prints every year that lists hold, hence the calendar of the standard library here.
namespace
{

namespace chrono = std::chrono;

constexpr chrono::sys_seconds minTime = chrono::sys_days(chrono::year(1) / 1 / 1);
constexpr chrono::sys_seconds maxTime = chrono::sys_days(chrono::year(10000) / 1 / 1) - chrono::seconds(1);

QDateTime toDateTime(chrono::sys_seconds time)
{
    return QDateTime::fromSecsSinceEpoch(std::clamp(time, minTime, maxTime).time_since_epoch().count(), inUtc);
}

/// The number at the front of `text`, of exactly `digits` ASCII digits, which are then taken off along with the
/// `separator` behind them; nothing when it is not so.
std::optional<int> takeNumber(QStringView &text, int digits, char16_t separator)
{
    if (text.size() <= digits || text[digits] != separator) {
        return std::nullopt;
    }
    int number = 0;
    for (const QChar digit : text.first(digits)) {
        if (digit < u'0' || digit > u'9') {
            return std::nullopt;
        }
        number = number * 10 + (digit.unicode() - u'0');
    }
    text = text.sliced(digits + 1);
    return number;
}

} // namespace

QVariant integer(std::uint64_t number)
{
    return number <= std::numeric_limits<std::int64_t>::max() ? QVariant(static_cast<qlonglong>(number))
                                                              : QVariant(static_cast<qulonglong>(number));
}

QDateTime date(double seconds)
{
    const double inRange = std::clamp(std::floor(seconds), static_cast<double>(minTime.time_since_epoch().count()),
                                      static_cast<double>(maxTime.time_since_epoch().count()));
    return toDateTime(chrono::sys_seconds(chrono::seconds(static_cast<std::int64_t>(inRange))));
}

std::optional<QDateTime> dateFromText(QStringView text)
{
    const auto year = takeNumber(text, 4, u'-');
    const auto month = year ? takeNumber(text, 2, u'-') : std::nullopt;
    const auto day = month ? takeNumber(text, 2, u'T') : std::nullopt;
    const auto hour = day ? takeNumber(text, 2, u':') : std::nullopt;
    const auto minute = hour ? takeNumber(text, 2, u':') : std::nullopt;
    const auto second = minute ? takeNumber(text, 2, u'Z') : std::nullopt;
    if (!second || !text.isEmpty() || *hour > 23 || *minute > 59 || *second > 59) {
        return std::nullopt;
    }
    const chrono::year_month_day calendarDay(chrono::year(*year), chrono::month(static_cast<unsigned>(*month)),
                                             chrono::day(static_cast<unsigned>(*day)));
    if (!calendarDay.ok()) {
        return std::nullopt;
    }
    return toDateTime(chrono::sys_days(calendarDay) + chrono::hours(*hour) + chrono::minutes(*minute) +
                      chrono::seconds(*second));
}

QByteArray dateToText(const QDateTime &date)
{
    const chrono::sys_time<chrono::milliseconds> exact(chrono::milliseconds(date.toMSecsSinceEpoch()));
    const chrono::sys_seconds time = std::clamp(chrono::floor<chrono::seconds>(exact), minTime, maxTime);
    const auto midnight = chrono::floor<chrono::days>(time);
    const chrono::year_month_day day(midnight);
    const chrono::hh_mm_ss clock(time - midnight);
    std::array<char, 64> text{};
    const int length = std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", int(day.year()),
                                     unsigned(day.month()), unsigned(day.day()), int(clock.hours().count()),
                                     int(clock.minutes().count()), int(clock.seconds().count()));
    return QByteArray(text.data(), length);
}

} // namespace PropertyListValues
