#include "platform/linux/bus/SessionBusAddress.h"
#include "platform/linux/include/EventBusName.h"
#include "platform/linux/include/MenuObjectPath.h"
#include "showmenu/AgentOfDisplay.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

int fail(const char *why)
{
    std::fprintf(stderr, "kivshowmenu: %s\n", why);
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char **argv)
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
    if (bus.call(call, QDBus::Block, timeout).type() != QDBusMessage::ReplyMessage) {
        return fail(
            isForMessage
                ? "there is no message to answer, or a panel of the agent has to be answered first"
                : "the agent does not show its menu: it is busy, or the service has taken the status item away");
    }
    return EXIT_SUCCESS;
}
