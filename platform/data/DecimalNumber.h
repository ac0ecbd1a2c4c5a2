#pragma once

#include <QStringView>

/// Real numbers in decimal text: [sign] digits [. digits] [e [sign] digits], with at least one digit before or after
/// the point. Only ASCII digits count, whatever the locale. Reentrant.
namespace DecimalNumber
{

/// How many characters at the front of `text` form such a number; 0 when there is none.
[[nodiscard]] qsizetype length(QStringView text);

/// The value of `text`, which is such a number from end to end; too large a one is infinite, too small a one 0.
[[nodiscard]] double value(QStringView text);

} // namespace DecimalNumber
