#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

/// Property lists, the file format of preferences, caches and information dictionaries (Apple's plist(5)).
///
/// Types: string QString, integer qlonglong (qulonglong above 2^63-1), real double, boolean bool, date QDateTime in
/// UTC, data QByteArray, array QVariantList, dictionary QVariantMap.
///
/// Dates are kept to the second. Years above 9999 cannot be written in the format: they are written as
/// 9999-12-31T23:59:59Z, which still means "for ever" to whoever compares it with today.
///
/// Limits, beyond which a list counts as malformed: 16 MiB, 512 levels, 1,000,000 values after expansion of shared
/// references. A document type other than the plain plist one, and every entity of its own, is refused.
///
/// Reentrant; no shared state.
namespace PropertyList
{

/// The value in `bytes`: XML (UTF-8 or UTF-16) or binary (bplist00), told apart by their first bytes.
/// An invalid QVariant when malformed or empty.
[[nodiscard]] QVariant read(const QByteArray &bytes);

/// The value in the file; an invalid QVariant when it is missing, unreadable, too large or malformed.
[[nodiscard]] QVariant readFile(const QString &path);

/// The value as XML, UTF-8. Characters that XML 1.0 forbids are dropped. A QVariant of a type that is not listed above
/// (at any depth) is left out, with its key. Empty when `value` itself is of such a type.
[[nodiscard]] QByteArray toXml(const QVariant &value);

enum class Writing {
    Atomic, ///< To a temporary file that then takes the old one's place: a crash or a full disk leaves the old one
            ///< whole.
    InPlace ///< Straight into the file, which keeps its owner, mode and links.
};

/// False when the value cannot be written as a list or the file not be written whole.
bool writeFile(const QString &path, const QVariant &value, Writing writing);

} // namespace PropertyList
