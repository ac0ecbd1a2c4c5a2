#pragma once

#include <QByteArray>
#include <QVariant>

/// Property lists in the binary format, version 00. Reentrant.
namespace PropertyListBinaryReader
{

/// Whether `bytes` claims to be such a list.
[[nodiscard]] bool recognises(const QByteArray &bytes);

/// The value in `bytes`; an invalid QVariant when malformed. Sets are read as arrays; null, UIDs and integers outside
/// -2^63 to 2^64-1 count as malformed. Of two values under one key the later one counts. Objects that are referred to
/// more than once are shared in memory, too.
[[nodiscard]] QVariant read(const QByteArray &bytes);

} // namespace PropertyListBinaryReader
