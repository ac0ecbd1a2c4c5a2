#pragma once

#include <QTimeZone>

/// What makes a moment of QDateTime's constructor and of its `from...SinceEpoch` one of UTC.
///
/// Qt 6.5 brought a time zone that costs no more than the time specification `Qt::UTC`, which Qt 6.9 deprecates in
/// these calls; Qt 6.4 has only the latter.
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
inline constexpr QTimeZone::Initialization inUtc = QTimeZone::UTC;
#else
inline constexpr Qt::TimeSpec inUtc = Qt::UTC;
#endif
