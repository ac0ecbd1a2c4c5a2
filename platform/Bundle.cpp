#include "platform/Bundle.h"

#include "platform/LogCategories.h"
#include "platform/MainBundlePath.h"
#include "platform/data/PropertyList.h"
#include "platform/data/StringValues.h"

#include <QFileInfo>

#include <utility>

namespace
{
/// The path of the file; null when there is none, or no folder.
QString existing(const QString &folder, const QString &name)
{
    const QString file = folder + u'/' + name;
    return !folder.isNull() && QFileInfo(file).isFile() ? file : QString();
}
} // namespace

Bundle::Bundle(const QString &resources)
    : Bundle(resources, resources + QStringLiteral("/Info.plist"), resources)
{
}

Bundle::Bundle(QString resources, const QString &informationFile, QString executables)
    : m_resources(std::move(resources))
    , m_executables(std::move(executables))
{
    const QVariant information = PropertyList::readFile(informationFile);
    if (information.typeId() == QMetaType::QVariantMap) {
        m_info = PropertyList::readFile(existing(m_resources, QStringLiteral("Build.plist"))).toMap();
        m_info->insert(information.toMap());
    } else if (const QFileInfo file(informationFile); file.exists() || file.isSymLink()) {
        qCWarning(agentLog) << informationFile
                            << "cannot be read, or is no property list of a dictionary: there is no message feed";
    }
}

const Bundle &Bundle::main()
{
    static const Bundle bundle = [] {
        const MainBundlePath path = mainBundlePath();
        return Bundle(path.resources, path.informationFile, path.executables);
    }();
    return bundle;
}

QString Bundle::infoString(const QString &key) const
{
    return StringValues::stringValue(m_info.value_or(QVariantMap()).value(key));
}

QString Bundle::pathForResource(const QString &name, const QString &type) const
{
    return existing(m_resources, type.isEmpty() ? name : name + u'.' + type);
}

QString Bundle::pathForAuxiliaryExecutable(const QString &name) const
{
    return existing(m_executables, name);
}
