#include "Bundle.h"

#include "platform/MainBundlePath.h"
#include "platform/PropertyList.h"
#include "platform/StringValues.h"

#include <QFileInfo>

#include <utility>

Bundle::Bundle(const QString &resources)
    : Bundle(resources, resources + QStringLiteral("/Info.plist"))
{
}

Bundle::Bundle(QString resources, const QString &informationFile)
    : m_resources(std::move(resources))
{
    const QVariant information = PropertyList::readFile(informationFile);
    if (information.typeId() == QMetaType::QVariantMap) {
        m_info = information.toMap();
    }
}

const Bundle &Bundle::main()
{
    static const Bundle bundle = [] {
        const MainBundlePath path = mainBundlePath();
        return Bundle(path.resources, path.informationFile);
    }();
    return bundle;
}

QString Bundle::infoString(const QString &key) const
{
    return StringValues::stringValue(m_info.value_or(QVariantMap()).value(key));
}

QString Bundle::pathForResource(const QString &name, const QString &type) const
{
    const QString file = type.isEmpty() ? name : name + u'.' + type;
    const QString path = m_resources + u'/' + file;
    return QFileInfo(path).isFile() ? path : QString();
}
