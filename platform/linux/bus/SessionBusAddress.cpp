#include "platform/linux/bus/SessionBusAddress.h"

#include <QStringList>
#include <QUrl>

namespace
{

QString addressFromEnvironment()
{
    // "autolaunch:" would start a bus that nobody ends.
    const QStringList entries = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS").split(QLatin1Char(';'));
    QStringList kept;
    for (const QString &entry : entries) {
        if (!entry.isEmpty() && !entry.startsWith(QStringLiteral("autolaunch:")) &&
            !entry.startsWith(QStringLiteral("disabled:"))) {
            kept.append(entry);
        }
    }
    return kept.join(QLatin1Char(';'));
}

} // namespace

QString sessionBusAddress()
{
    const QString given = addressFromEnvironment();
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!given.isEmpty() || runtime.isEmpty()) {
        return given;
    }
    // Of the characters that an address may hold unescaped, '~' is not one.
    return QStringLiteral("unix:path=") +
           QString::fromLatin1(QUrl::toPercentEncoding(runtime + QStringLiteral("/bus"), "/", "~"));
}
