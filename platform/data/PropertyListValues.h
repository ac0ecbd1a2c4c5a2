#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QStringView>
#include <QVariant>

#include <cstdint>
#include <optional>

/// What the formats of property lists share: the limits, and how a number or date becomes a value. Reentrant.
namespace PropertyListValues
{

inline constexpr qsizetype maxBytes = qsizetype(16) * 1024 * 1024;
inline constexpr int maxLevels = 512;                ///< Arrays and dictionaries within one another.
inline constexpr std::int64_t maxValues = 1'000'000; ///< Containers and what they hold; keys are not counted.

/// An integer value: qlonglong where that suffices, else qulonglong.
[[nodiscard]] QVariant integer(std::uint64_t number);

/// The date that many seconds after (or before) 1970, rounded down to the second, in UTC. A date before the year 1 or
/// after the year 9999 becomes the first or last second of these. `seconds` may be infinite but not NaN.
[[nodiscard]] QDateTime date(double seconds);

/// The date that `text` states: exactly YYYY-MM-DDThh:mm:ssZ. Nothing when it has another form or there is no such day
/// or time. The year 0000, as which others write the distant past, is read as the first second of the year 1.
[[nodiscard]] std::optional<QDateTime> dateFromText(QStringView text);

/// The same the other way; `date` is valid, and brought between the years 1 and 9999 as above.
[[nodiscard]] QByteArray dateToText(const QDateTime &date);

} // namespace PropertyListValues
