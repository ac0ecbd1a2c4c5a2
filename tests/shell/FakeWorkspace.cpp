#include "tests/shell/FakeWorkspace.h"

#include "platform/Workspace.h"

QStringList openedByWorkspace;

void Workspace::openFile(const QString &path)
{
    openedByWorkspace.append(QStringLiteral("file ") + path);
}

void Workspace::openUrl(const QString &address)
{
    openedByWorkspace.append(QStringLiteral("address ") + address);
}
