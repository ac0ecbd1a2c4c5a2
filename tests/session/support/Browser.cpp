#include "tests/session/support/Browser.h"

#include "tests/session/support/ScriptFile.h"

#include <QFile>

namespace
{
QString recordIn(const QTemporaryDir &directory)
{
    return directory.filePath(QStringLiteral("opened"));
}
} // namespace

Browser::Browser()
{
    writeScript(m_directory.filePath(QStringLiteral("xdg-open")),
                "echo \"$*\" >> '" + recordIn(m_directory).toLocal8Bit() + '\'');
}

void Browser::addTo(QProcessEnvironment &environment) const
{
    const QString path = QStringLiteral("PATH");
    environment.insert(path, m_directory.path() + u':' + environment.value(path));
}

QByteArrayList Browser::opened() const
{
    QFile record(recordIn(m_directory));
    QByteArrayList lines = record.open(QIODevice::ReadOnly) ? record.readAll().split('\n') : QByteArrayList();
    lines.removeAll(QByteArray());
    return lines;
}
