#include "platform/SystemVersion.h"

#include "platform/data/PropertyList.h"

#include <QVariantMap>

QString systemVersion(const QString &file)
{
    const QVariant version = PropertyList::readFile(file).toMap().value(QStringLiteral("ProductVersion"));
    return version.typeId() == QMetaType::QString ? version.toString() : QString();
}
