#include "platform/Workspace.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

void Workspace::openFile(const QString &path)
{
    if (QFileInfo::exists(path)) {
        QDesktopServices::openUrl(QUrl::fromLocalFile(path));
    }
}

void Workspace::openUrl(const QString &address)
{
    const QUrl url(address, QUrl::StrictMode);
    if (url.isValid() && !url.isRelative()) {
        QDesktopServices::openUrl(url);
    }
}
