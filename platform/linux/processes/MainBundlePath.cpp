#include "platform/MainBundlePath.h"

#include "platform/ProductTexts.h"

#include <QCoreApplication>
#include <QDir>

MainBundlePath mainBundlePath()
{
    // Qt takes the folder from /proc/self/exe, so a link to the program still finds the program's bundle.
    const QString programs = QCoreApplication::applicationDirPath();
    const auto beside = [&](QLatin1String folder) { return QDir::cleanPath(programs + u'/' + folder); };
    const QString resources = beside(ProductTexts::bundleFolder);
    return {resources, resources + QStringLiteral("/Info.plist"), beside(ProductTexts::helperFolder)};
}
