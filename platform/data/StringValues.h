#pragma once

#include <QByteArrayView>
#include <QString>
#include <QVariant>

#include <cstdint>

/// Numbers and booleans out of strings and property-list values, read as Foundation's NSString and NSNumber read them:
/// leading white space is skipped, then an optional sign, then as many digits as there are; what follows is ignored;
/// too large a number saturates; no digits give 0. One place for all, since the preferences file, the feed and the
/// cache file may each hold a number as a number or as a string. Reentrant.
namespace StringValues
{

[[nodiscard]] std::int32_t intValue(const QString &text);
[[nodiscard]] std::int64_t longLongValue(const QString &text);
/// Decimal point and exponent included; saturates to infinity.
[[nodiscard]] float floatValue(const QString &text);
/// True when the first character after leading white space, sign and zeros is one of Y, y, T, t or 1 to 9.
[[nodiscard]] bool boolValue(const QString &text);

/// The same for a property-list value: numbers and booleans are converted (saturating, too; NaN is the integer 0, and
/// true), strings read as above, all else is 0.
[[nodiscard]] std::int32_t intValue(const QVariant &value);
[[nodiscard]] float floatValue(const QVariant &value);
[[nodiscard]] bool boolValue(const QVariant &value);

/// The other way round, for texts that a property list may hold as numbers: a string as it is, a number as its decimal
/// text; nil (a null string) for all else, booleans included.
[[nodiscard]] QString stringValue(const QVariant &value);

/// The text that the bytes are in UTF-8; nil when they are not UTF-8. A byte order mark is text like any other, and so
/// is a zero byte.
[[nodiscard]] QString fromUtf8(QByteArrayView bytes);

} // namespace StringValues
