#include <QApplication>
#include <QDBusConnection>
#include <QFile>
#include <QRegularExpression>
#include <QTextBrowser>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

// A program of Qt's without our cures, to which a test does what one of them is for:
//   connect ADDRESS   asks a bus for a connection
//   run [ADDRESS]     says "up" once its event loop runs, "goes on" when it still does a moment later, and "left" after
//                     it; with an object on a bus until its end
//   pattern           matches a regular expression, and names the parts of its memory
//   image FILE        shows a text with that image, and names the files of that kind that Qt looks for

namespace
{

/// Whether the files that are looked for are named.
bool isNaming = false;

void name(const char *path)
{
    if (isNaming && std::strstr(path, ".png")) {
        std::puts(path);
    }
}

} // namespace

// Ahead of the C library's: what Qt asks of files goes through one of these.
extern "C" int statx(int folder, const char *path, int flags, unsigned int mask, struct statx *buffer)
{
    name(path);
    return static_cast<int>(::syscall(SYS_statx, folder, path, flags, mask, buffer));
}

extern "C" int access(const char *path, int mode) noexcept
{
    name(path);
    return static_cast<int>(::syscall(SYS_faccessat, AT_FDCWD, path, mode));
}

namespace
{

int connectTo(const QString &address)
{
    const QString name = QStringLiteral("bus");
    const bool connected = QDBusConnection::connectToBus(address, name).isConnected();
    QDBusConnection::disconnectFromBus(name);
    return connected ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// On a bus until its end, which it then takes leave of.
struct Guest {
    ~Guest()
    {
        if (connection) {
            connection->unregisterObject(QStringLiteral("/"));
            QDBusConnection::disconnectFromBus(connection->name());
        }
    }
    std::optional<QDBusConnection> connection;
    QObject object;
};

int run(const QString &bus)
{
    // Made before QtDBus has anything of its own, and so destroyed after that.
    static Guest guest;
    if (!bus.isEmpty()) {
        guest.connection.emplace(QDBusConnection::connectToBus(bus, QStringLiteral("bus")));
        guest.connection->registerObject(QStringLiteral("/"), &guest.object, QDBusConnection::ExportAdaptors);
    }
    const auto say = [](const char *line) {
        std::puts(line);
        std::fflush(stdout);
    };
    QTimer::singleShot(0, [say] { say("up"); });
    QTimer::singleShot(300, [say] { say("goes on"); });
    const int status = QApplication::exec();
    say("left");
    return status;
}

int show(const QString &image)
{
    isNaming = true;
    QTextBrowser view;
    view.setHtml(QStringLiteral("<img src=\"%1\">").arg(image));
    return view.grab().isNull() ? EXIT_FAILURE : EXIT_SUCCESS;
}

int match()
{
    const bool isMatch = QRegularExpression(QStringLiteral("a+b")).match(QStringLiteral("aab")).hasMatch();
    QFile memory(QStringLiteral("/proc/self/maps"));
    if (!isMatch || !memory.open(QIODevice::ReadOnly)) {
        return EXIT_FAILURE;
    }
    std::puts(memory.readAll().constData());
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication::setDesktopSettingsAware(false);
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QStringList arguments = QApplication::arguments().mid(1);
    const QString argument = arguments.value(1);
    if (arguments.value(0) == QLatin1String("connect")) {
        return connectTo(argument);
    }
    if (arguments.value(0) == QLatin1String("pattern")) {
        return match();
    }
    return arguments.value(0) == QLatin1String("image") ? show(argument) : run(argument);
}
