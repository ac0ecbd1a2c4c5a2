#include "platform/data/PropertyList.h"

#include "platform/data/PropertyListBinaryReader.h"
#include "platform/data/PropertyListValues.h"
#include "platform/data/PropertyListXmlReader.h"
#include "platform/data/PropertyListXmlWriter.h"
#include "platform/files/AtomicFile.h"

#include <optional>

namespace PropertyList
{

QVariant read(const QByteArray &bytes)
{
    if (bytes.size() > PropertyListValues::maxBytes) {
        return {};
    }
    return PropertyListBinaryReader::recognises(bytes) ? PropertyListBinaryReader::read(bytes)
                                                       : PropertyListXmlReader::read(bytes);
}

QVariant readFile(const QString &path, RegularFile::Links links)
{
    const std::optional<QByteArray> bytes = RegularFile::read(path, PropertyListValues::maxBytes, links);
    return bytes ? read(*bytes) : QVariant();
}

QByteArray toXml(const QVariant &value)
{
    return PropertyListXmlWriter::write(value);
}

bool writeFile(const QString &path, const QVariant &value, Writing writing)
{
    const QByteArray xml = toXml(value);
    if (xml.isEmpty()) {
        return false;
    }
    return writing == Writing::Atomic ? AtomicFile::write(path, xml, AtomicFile::Access::AsBefore)
                                      : RegularFile::overwrite(path, xml);
}

} // namespace PropertyList
