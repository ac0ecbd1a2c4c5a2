#include "platform/linux/bus/SessionBusAddress.h"
#include "platform/linux/include/EventBusName.h"
#include "platform/linux/include/MenuObjectPath.h"
#include "showmenu/AgentOfDisplay.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

int fail(const QByteArray &why)
{
    std::fprintf(stderr, "kivshowmenu: %s\n", why.constData());
    return EXIT_FAILURE;
}

QString whyRefused(const QDBusError &error)
{
    if (error.type() == QDBusError::Failed) {
        return QStringLiteral("the agent says: ") + error.message();
    }
    // Of a call that must not start anything, the bus says it by the second name.
    if (error.type() == QDBusError::ServiceUnknown ||
        error.name() == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner")) {
        return QStringLiteral("the agent of this display is not on this session bus");
    }
    return QStringLiteral("the agent gives no answer: ") + error.message();
}

int run(int argc, char **argv)
{
    const bool isForMessage = argc == 2 && std::strcmp(argv[1], "--message") == 0;
    if (argc > 1 && !isForMessage) {
        return fail("usage: kivshowmenu [--message]");
    }
    const QCoreApplication application(argc, argv);
    const std::optional<pid_t> agent = agentOfDisplay();
    if (!agent) {
        return fail("there is no agent on this display");
    }
    // Without an address Qt would start a bus.
    const QString address = sessionBusAddress();
    const QDBusConnection bus = address.isEmpty()
                                    ? QDBusConnection(QString())
                                    : QDBusConnection::connectToBus(address, QStringLiteral("kivshowmenu"));
    if (!bus.isConnected()) {
        return fail("there is no session bus");
    }
    QDBusMessage call =
        QDBusMessage::createMethodCall(eventBusName(*agent), menuObjectPath(), menuInterface(),
                                       isForMessage ? QStringLiteral("ShowMessage") : QStringLiteral("ShowMenu"));
    call.setAutoStartService(false);
    constexpr int timeout = 5000; // milliseconds
    const QDBusMessage answer = bus.call(call, QDBus::Block, timeout);
    if (answer.type() != QDBusMessage::ReplyMessage) {
        return fail(whyRefused(QDBusError(answer)).toLocal8Bit());
    }
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char **argv)
{
    const int status = run(argc, argv);
    // Not by exit(): what the bus says while QtDBus is taken apart ends in a warning of a type that is known no more.
    std::fflush(nullptr);
    std::quick_exit(status);
}
