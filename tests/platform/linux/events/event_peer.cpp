#include "tests/platform/linux/events/RawEvent.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QThread>

#include <cstdio>
#include <ctime>

// The other end of the event link for tests, by raw D-Bus.
//   event_peer send <bus name> <count>    events 0, 1, 2 ... in parameter 'numb', without reply
//   event_peer paced <bus name> <count>   the same, one each millisecond, with the monotonic time in ns in 'time'
// It writes a line once all is sent, and ends with its standard input.

namespace
{

qint64 monotonicNanoseconds()
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return qint64(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        return 2;
    }
    const QDBusConnection bus =
        QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("peer"));
    const bool isPaced = arguments.at(1) == QStringLiteral("paced");
    for (qint32 number = 0; number < arguments.at(3).toInt(); ++number) {
        QList<RawParameter> parameters{{QStringLiteral("numb"), QStringLiteral("long"), bytesOf(number)}};
        if (isPaced) {
            QThread::msleep(1);
            parameters.append({QStringLiteral("time"), QStringLiteral("comp"), bytesOf(monotonicNanoseconds())});
        }
        if (!bus.send(rawEvent(arguments.at(2), QStringLiteral("test"), QStringLiteral("numb"), parameters))) {
            return 1;
        }
    }
    std::puts("sent");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}
