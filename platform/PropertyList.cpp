#include "PropertyList.h"

#include "platform/PropertyListBinaryReader.h"
#include "platform/PropertyListValues.h"
#include "platform/PropertyListXmlReader.h"
#include "platform/PropertyListXmlWriter.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <unistd.h>

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
    const QFileInfo info(path);
    if (xml.isEmpty() || (info.exists() && !info.isFile())) {
        return false;
    }
    if (writing == Writing::Atomic) {
        // commit() alone would put a truncated file in the old one's place: it overlooks that its own flush fails, and
        // takes no notice of what only fsync reports, such as a quota on a network file system.
        QSaveFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(xml) == xml.size() && file.flush() &&
               ::fsync(file.handle()) == 0 && file.commit();
    }
    QFile file(path);
    const bool taken = file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(xml) == xml.size();
    file.close(); // Much is only written here, and the error of that stays set.
    return taken && file.error() == QFileDevice::NoError;
}

} // namespace PropertyList
