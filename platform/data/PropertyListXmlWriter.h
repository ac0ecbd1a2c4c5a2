#pragma once

#include <QByteArray>
#include <QVariant>

/// Property lists as XML. Reentrant.
namespace PropertyListXmlWriter
{

/// As PropertyList::toXml().
[[nodiscard]] QByteArray write(const QVariant &value);

} // namespace PropertyListXmlWriter
