#pragma once

#include "platform/files/RegularFile.h"

#include <QByteArray>
#include <QString>
#include <QVariant>

/// Property lists, the file format of preferences, caches and information dictionaries (Apple's plist(5)).
///
/// Types: string QString, integer qlonglong (qulonglong above 2^63-1), real double, boolean bool, date QDateTime in
/// UTC, data QByteArray, array QVariantList, dictionary QVariantMap.
///
/// Integers and reals of the other widths are written, too. A null QString and an invalid QDateTime are nil, which no
/// list can hold. An empty string is read as an empty one, not a null one.
///
/// Dates are kept to the second. Years above 9999 cannot be written in the format: they are written as
/// 9999-12-31T23:59:59Z, which still means "for ever" to whoever compares it with today. In the same way dates before
/// the year 1 become 0001-01-01T00:00:00Z. Binary lists can state such dates; they are read as these, infinity
/// included.
///
/// Limits, beyond which a list counts as malformed: 16 MiB, 512 levels, 1,000,000 values after expansion of shared
/// references. A document type other than the plain plist one, and every entity of its own, is refused.
///
/// Binary sets are read as arrays; binary null and UID values make a list malformed. Of two values under one key the
/// later one counts.
///
/// Reentrant; no shared state.
namespace PropertyList
{

/// The value in `bytes`: XML (UTF-8 or UTF-16) or binary (bplist00), told apart by their first bytes.
/// An invalid QVariant when malformed or empty.
[[nodiscard]] QVariant read(const QByteArray &bytes);

/// The value in the file; an invalid QVariant when it is missing, unreadable, no regular file, too large or malformed.
[[nodiscard]] QVariant readFile(const QString &path, RegularFile::Links links = RegularFile::Links::Follow);

/// The value as XML, UTF-8. Characters that XML 1.0 forbids are dropped. A QVariant of a type that is not listed above,
/// or nil, is left out at any depth, with its key. Empty when `value` itself is such a one, or when the list would
/// exceed the limits, so that what is written can be read again.
[[nodiscard]] QByteArray toXml(const QVariant &value);

enum class Writing {
    Atomic, ///< To a temporary file that then takes the old one's place: a crash or a full disk leaves the old one
            ///< whole.
    InPlace ///< Straight into the file, which keeps its owner, mode and links.
};

/// False when the value cannot be written as a list, the file not be written whole, its folder belongs to somebody
/// else, or `path` is there but no regular file. Creates the file when it is missing, but no folder. What a symbolic
/// link leads to is never written to: the link is replaced, or in place the file is not written.
bool writeFile(const QString &path, const QVariant &value, Writing writing);

} // namespace PropertyList
