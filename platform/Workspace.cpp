#include "platform/Workspace.h"

#include "platform/LogCategories.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
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

void run(const QString &program)
{
    if (QProcess::startDetached(program, {})) {
        qCDebug(agentLog) << "runs" << program;
    } else {
        qCWarning(agentLog) << "cannot run" << program;
    }
}

} // namespace

void Workspace::openFile(const QString &path)
{
    const QFileInfo file(path);
    if (!file.exists()) {
        qCWarning(agentLog) << "cannot open" << path << "which does not exist";
    } else if (file.isFile() && file.isExecutable()) {
        run(path);
    } else {
        open(QUrl::fromLocalFile(path));
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
