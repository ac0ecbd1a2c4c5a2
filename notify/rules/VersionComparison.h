#pragma once

#include <QString>

/// Compares the second components of two dotted versions: 0 when their integer values (StringValues) are equal, else -1
/// or 1 as the two texts sort, code unit by code unit: 3.10 sorts before 3.9. No other component counts.
/// A nil version sorts before every other, and two nil ones are equal.
/// Throws std::out_of_range when a version that is not nil has no second component. Reentrant.
[[nodiscard]] int compareToVersion(const QString &a, const QString &b);
