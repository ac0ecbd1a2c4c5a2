// Has a text shown to the user: by the agent, through the event link, or by the session's notification daemon.
//   hintsender agent PID    claims that agent
//   hintsender daemon
// Takes lines, each of them a text, on standard input. Prints the time (CLOCK_MONOTONIC, nanoseconds) just before each
// is sent, and "ready" before all.

#include "tools/kivservice/AttachedService.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>

#include <chrono>
#include <cstdio>
#include <functional>
#include <iostream>
#include <string>

namespace
{

void showByDaemon(const QDBusConnection &bus, const QString &text)
{
    const QString name = QStringLiteral("org.freedesktop.Notifications");
    QDBusMessage call = QDBusMessage::createMethodCall(name, QStringLiteral("/org/freedesktop/Notifications"), name,
                                                       QStringLiteral("Notify"));
    call << QStringLiteral("hintsender") << 0U << QString() << QStringLiteral("Hint") << text << QStringList()
         << QVariantMap() << -1;
    bus.send(call);
}

int run(const std::function<bool(const std::string &text)> &show)
{
    std::puts("ready");
    std::fflush(stdout);
    for (std::string line; std::getline(std::cin, line);) {
        const auto time = std::chrono::steady_clock::now().time_since_epoch();
        if (!show(line)) {
            return 1;
        }
        std::printf("%lld\n", static_cast<long long>(std::chrono::nanoseconds(time).count()));
        std::fflush(stdout);
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.value(1) == QLatin1String("daemon")) {
        const QDBusConnection bus =
            QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("sender"));
        return run([&bus](const std::string &text) {
            showByDaemon(bus, QString::fromStdString(text));
            return true;
        });
    }
    if (words.value(1) != QLatin1String("agent") || words.size() != 3) {
        return 2;
    }
    AttachedService service(
        {0, words.at(2).toUInt()}, [](const QByteArray &) {}, [](std::uint32_t) {});
    if (!service.claim()) {
        return 1;
    }
    return run([&service](const std::string &text) {
        return service.send(ServiceLine::Hint{QByteArray::fromStdString(text)});
    });
}
