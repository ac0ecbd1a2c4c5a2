#include "platform/data/PropertyList.h"

#include "platform/data/AtomicFile.h"
#include "platform/data/PropertyListBinaryReader.h"
#include "platform/data/PropertyListValues.h"
#include "platform/data/PropertyListXmlReader.h"
#include "platform/data/PropertyListXmlWriter.h"

#include <QFile>
#include <QFileInfo>

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

QVariant readFile(const QString &path)
{
    // A pipe would block, a device might never end.
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray bytes = file.read(PropertyListValues::maxBytes + 1);
    return file.error() == QFileDevice::NoError ? read(bytes) : QVariant();
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
    if (writing == Writing::Atomic) {
        return AtomicFile::write(path, xml, AtomicFile::Access::AsBefore);
    }
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {
        return false;
    }
    QFile file(path);
    const bool taken = file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(xml) == xml.size();
    file.close(); // Much is only written here, and the error of that stays set.
    return taken && file.error() == QFileDevice::NoError;
}

} // namespace PropertyList
