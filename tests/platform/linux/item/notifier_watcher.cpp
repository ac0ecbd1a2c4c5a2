#include "tests/platform/linux/item/NotifierWatcherObject.h"

#include <QCoreApplication>
#include <QDBusConnection>

#include <cstdio>

// A StatusNotifierWatcher with a host, in a process of its own, which is no client of any X server. It writes a line
// once it is there, and one for each item that registers, with its name. With an argument it has that name on the bus,
// and is no watcher.

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QDBusConnection bus =
        QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("watcher"));
    NotifierWatcherObject watcher;
    const QString name = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("org.kde.StatusNotifierWatcher");
    if (!bus.registerObject(QStringLiteral("/StatusNotifierWatcher"), &watcher, QDBusConnection::ExportAllContents) ||
        !bus.registerService(name)) {
        return 1;
    }
    const auto write = [](const QString &line) {
        std::puts(qPrintable(line));
        std::fflush(stdout);
    };
    QObject::connect(&watcher, &NotifierWatcherObject::StatusNotifierItemRegistered, &watcher,
                     [&](const QString &item) { write(QStringLiteral("item ") + item); });
    write(QStringLiteral("there"));
    return QCoreApplication::exec();
}
