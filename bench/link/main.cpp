// How long a message is under way, over the event link and over bare QtDBus with a message of the same shape.
//   linkpeer receive event|ping COUNT          prints "ready PID"; then, once it has so many, "took NANOSECONDS..."
//   linkpeer send event|ping PID COUNT RATE    sends so many to that process, RATE a second
// Each message carries the time (CLOCK_MONOTONIC) at which its making began.

#include "platform/FourCharCode.h"
#include "platform/linux/include/EventBusName.h"
#include "tests/platform/linux/events/RawEvent.h"

#include <Carbon/Carbon.h>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusVirtualObject>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <vector>

namespace
{

constexpr FourCharCode eventClass = fourCharCode("test");
constexpr FourCharCode eventID = fourCharCode("ping");
constexpr FourCharCode timeKeyword = fourCharCode("time");
constexpr FourCharCode timeType = fourCharCode("comp");

qint64 now()
{
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

/// The times that the messages took, printed once all are there.
class Record final
{
public:
    explicit Record(std::size_t expected)
        : m_expected(expected)
    {
        m_times.reserve(expected);
    }

    void add(qint64 sent)
    {
        m_times.push_back(now() - sent);
        if (m_times.size() < m_expected) {
            return;
        }
        std::fputs("took", stdout);
        for (const qint64 time : m_times) {
            std::printf(" %lld", static_cast<long long>(time));
        }
        std::puts("");
        QCoreApplication::quit();
    }

private:
    std::size_t m_expected;
    std::vector<qint64> m_times;
};

OSErr onEvent(const AppleEvent *event, AppleEvent *, SRefCon refcon)
{
    qint64 sent = 0;
    const OSErr status = AEGetParamPtr(event, timeKeyword, timeType, nullptr, &sent, sizeof sent, nullptr);
    if (status == noErr) {
        static_cast<Record *>(refcon)->add(sent);
    }
    return status;
}

class PingReceiver final : public QDBusVirtualObject
{
public:
    explicit PingReceiver(Record &record)
        : m_record(record)
    {
    }

    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override
    {
        const auto parameters = qdbus_cast<QList<RawParameter>>(message.arguments().value(2));
        qint64 sent = 0;
        std::memcpy(&sent, parameters.constLast().bytes.constData(), sizeof sent);
        m_record.add(sent);
        return true;
    }

private:
    Record &m_record;
};

QDBusConnection bus()
{
    return QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("peer"));
}

void sayReady()
{
    std::printf("ready %lld\n", static_cast<long long>(QCoreApplication::applicationPid()));
    std::fflush(stdout);
}

int receive(bool isPing, std::size_t count)
{
    Record record(count);
    if (isPing) {
        PingReceiver receiver(record);
        QDBusConnection connection = bus();
        connection.registerVirtualObject(eventObjectPath(), &receiver);
        connection.registerService(eventBusName(QCoreApplication::applicationPid()));
        sayReady();
        return QCoreApplication::exec();
    }
    if (AEInstallEventHandler(eventClass, eventID, onEvent, &record, false) != noErr) {
        return 1;
    }
    sayReady();
    const int status = QCoreApplication::exec();
    AERemoveEventHandler(eventClass, eventID, onEvent, false);
    return status;
}

bool sendEvent(SInt32 pid)
{
    const qint64 time = now();
    AEAddressDesc target;
    AppleEvent event;
    AECreateDesc(typeKernelProcessID, &pid, sizeof pid, &target);
    AECreateAppleEvent(eventClass, eventID, &target, kAutoGenerateReturnID, kAnyTransactionID, &event);
    AEPutParamPtr(&event, timeKeyword, timeType, &time, sizeof time);
    const OSErr status = AESend(&event, nullptr, kAENoReply, kAENormalPriority, kNoTimeOut, nullptr, nullptr);
    AEDisposeDesc(&event);
    AEDisposeDesc(&target);
    return status == noErr;
}

bool sendPing(const QDBusConnection &connection, SInt32 pid)
{
    const QList<RawParameter> parameters{{QStringLiteral("time"), QStringLiteral("comp"), bytesOf(now())}};
    return connection.send(rawEvent(eventBusName(pid), QStringLiteral("test"), QStringLiteral("ping"), parameters));
}

int send(const std::function<bool()> &sendOne, int count, int rate)
{
    timespec next{};
    ::clock_gettime(CLOCK_MONOTONIC, &next);
    for (int i = 0; i < count; ++i) {
        next.tv_nsec += 1'000'000'000 / rate;
        if (next.tv_nsec >= 1'000'000'000) {
            next.tv_nsec -= 1'000'000'000;
            ++next.tv_sec;
        }
        ::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next, nullptr);
        if (!sendOne()) {
            return 1;
        }
    }
    // Qt sends from another thread: the reader of this line ends the program when the other end has all.
    std::puts("sent");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    const bool isPing = words.value(2) == QLatin1String("ping");
    if (words.value(1) == QLatin1String("receive") && words.size() == 4) {
        return receive(isPing, words.at(3).toULongLong());
    }
    if (words.value(1) != QLatin1String("send") || words.size() != 6) {
        return 2;
    }
    const SInt32 pid = words.at(3).toInt();
    if (isPing) {
        const QDBusConnection connection = bus();
        return send([&] { return sendPing(connection, pid); }, words.at(4).toInt(), words.at(5).toInt());
    }
    return send([pid] { return sendEvent(pid); }, words.at(4).toInt(), words.at(5).toInt());
}
