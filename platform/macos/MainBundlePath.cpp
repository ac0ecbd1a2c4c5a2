#include "platform/MainBundlePath.h"

#include "platform/macos/CoreFoundationObject.h"

#include <QCoreApplication>
#include <QFile>

#include <climits>

namespace
{

/// The path of `url`, which may be null; a null string when there is none.
QString pathOf(const CoreFoundationObject &url)
{
    UInt8 path[PATH_MAX];
    if (!url || !CFURLGetFileSystemRepresentation(static_cast<CFURLRef>(url.get()), true, path,
                                                  static_cast<CFIndex>(sizeof path))) {
        return {};
    }
    return QFile::decodeName(reinterpret_cast<const char *>(path));
}

} // namespace

MainBundlePath mainBundlePath()
{
    CFBundleRef bundle = CFBundleGetMainBundle();
    if (!bundle) {
        return {};
    }
    const CoreFoundationObject resources(CFBundleCopyResourcesDirectoryURL(bundle));
    const CoreFoundationObject contents(CFBundleCopySupportFilesDirectoryURL(bundle)); // Where Info.plist is.
    const QString folder = pathOf(contents);
    return {pathOf(resources), folder.isNull() ? QString() : folder + QStringLiteral("/Info.plist"),
            QCoreApplication::applicationDirPath()};
}
