#include "platform/MainBundlePath.h"

#include <QCoreApplication>

#include <CoreFoundation/CoreFoundation.h>

namespace
{

/// The path of `url`, which is released; a null string when it is null or has no path.
QString takePath(CFURLRef url)
{
    if (!url) {
        return {};
    }
    CFURLRef absolute = CFURLCopyAbsoluteURL(url);
    CFRelease(url);
    CFStringRef path = CFURLCopyFileSystemPath(absolute, kCFURLPOSIXPathStyle);
    CFRelease(absolute);
    if (!path) {
        return {};
    }
    const QString result = QString::fromCFString(path);
    CFRelease(path);
    return result;
}

} // namespace

MainBundlePath mainBundlePath()
{
    CFBundleRef bundle = CFBundleGetMainBundle();
    if (!bundle) {
        return {};
    }
    // The support files are those in Contents, where Info.plist is.
    return {takePath(CFBundleCopyResourcesDirectoryURL(bundle)),
            takePath(CFBundleCopySupportFilesDirectoryURL(bundle)) + QStringLiteral("/Info.plist"),
            QCoreApplication::applicationDirPath()};
}
