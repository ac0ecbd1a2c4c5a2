#pragma once

#include <QByteArray>
#include <QVariant>

/// Property lists in XML. Reentrant.
namespace PropertyListXmlReader
{

/// The value in `bytes`, in UTF-8 or UTF-16 whatever the XML declaration says; an invalid QVariant when malformed.
/// Of two values under one key the later one counts.
[[nodiscard]] QVariant read(const QByteArray &bytes);

} // namespace PropertyListXmlReader
