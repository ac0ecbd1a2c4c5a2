#include "platform/Workspace.h"

#include "platform/LogCategories.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

namespace
{

void open(const QUrl &url)
{
    const QString address = url.toString(QUrl::RemoveUserInfo);
    if (QDesktopServices::openUrl(url)) {
        qCDebug(agentLog) << "opens" << address;
    } else {
        qCWarning(agentLog) << "no program of this session opens" << address;
    }
}

} // namespace

void Workspace::openFile(const QString &path)
{
    if (QFileInfo::exists(path)) {
        open(QUrl::fromLocalFile(path));
    } else {
        qCWarning(agentLog) << "cannot open" << path << "which does not exist";
    }
}

void Workspace::openUrl(const QString &address)
{
    const QUrl url(address, QUrl::StrictMode);
    if (url.isValid() && !url.isRelative()) {
        open(url);
    } else {
        qCWarning(agentLog) << "cannot open" << address << "which is no address";
    }
}
