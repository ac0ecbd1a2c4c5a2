#include "platform/linux/events/AppleEventTransport.h"

#include "platform/LogCategories.h"
#include "platform/linux/bus/Contracts.h"
#include "platform/linux/events/AppleEventMessage.h"
#include "platform/linux/include/EventBusName.h"
#include "platform/linux/include/SessionBus.h"
#include "platform/linux/processes/RunningProcess.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>

#include <exception>
#include <limits>
#include <utility>

namespace
{

OSErr statusOf(const QDBusMessage &answer)
{
    if (answer.type() == QDBusMessage::ReplyMessage) {
        bool isNumber = false;
        const int status = answer.arguments().value(0).toInt(&isNumber);
        const bool fits = status >= std::numeric_limits<OSErr>::min() && status <= std::numeric_limits<OSErr>::max();
        return isNumber && fits ? static_cast<OSErr>(status) : OSErr(errAEEventFailed);
    }
    switch (QDBusError(answer).type()) {
    case QDBusError::ServiceUnknown:
        return procNotFound;
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        return errAETimeout;
    case QDBusError::Disconnected:
        return connectionInvalid;
    default:
        return errAEEventFailed;
    }
}

/// Says why an event has not gone to a process, and is the error for that.
OSErr notSent(SInt32 pid, OSErr error, const char *why)
{
    qCDebug(linkLog, "nothing goes to process %d: %s", pid, why);
    return error;
}

OSErr notSentAsTheBusIsSilent(SInt32 pid)
{
    return notSent(pid, connectionInvalid, "the session bus is not there, or says nothing");
}

QString ownBusName()
{
    return eventBusName(QCoreApplication::applicationPid());
}

} // namespace

AppleEventTransport::AppleEventTransport(SessionBus &bus, Handler handler, std::size_t maxWaiting)
    : ObjectInTurns(eventInterface(), appleEventsContract, maxWaiting)
    , m_bus(bus)
    , m_handler(std::move(handler))
    , m_peers(bus)
    , m_receiver(bus)
{
    connect(&bus, &SessionBus::connected, this, &AppleEventTransport::registerOnBus);
}

AppleEventTransport::~AppleEventTransport()
{
    stopReceiving();
}

void AppleEventTransport::startReceiving()
{
    if (m_reception == Reception::Off) {
        m_reception = Reception::On;
        registerOnBus();
    }
}

void AppleEventTransport::stopReceiving()
{
    if (m_reception == Reception::On) {
        m_reception = Reception::Off;
        unregisterFromBus();
    }
}

void AppleEventTransport::registerOnBus()
{
    if (m_reception == Reception::Off || !m_bus.isConnected()) {
        return;
    }
    QDBusConnection connection = m_bus.connection();
    // The object first: who sees the name may call at once.
    if (!connection.registerVirtualObject(eventObjectPath(), this) || !m_bus.requestName(ownBusName())) {
        qCWarning(linkLog, "cannot receive events on the session bus: the service is not heard");
    } else {
        qCDebug(linkLog) << "receives events as" << ownBusName();
    }
}

void AppleEventTransport::unregisterFromBus()
{
    QDBusConnection connection = m_bus.connection();
    if (connection.isConnected()) {
        m_bus.releaseName(ownBusName());
    }
    connection.unregisterObject(eventObjectPath());
}

OSErr AppleEventTransport::findReceiver(SInt32 pid, QString &uniqueName) const
{
    if (!isRunningProcess(pid)) {
        return notSent(pid, procNotFound, "it does not run");
    }
    // The bus accepts a message to an unowned name without a word, so it is asked first; and who holds the name of a
    // process that it is not gets nothing.
    uniqueName = m_bus.ownerOf(eventBusName(pid));
    if (uniqueName.isEmpty()) {
        return uniqueName.isNull() ? notSentAsTheBusIsSilent(pid) : notSent(pid, procNotFound, "it receives no events");
    }
    const std::optional<qint64> owner = m_bus.processOf(uniqueName);
    if (owner != pid) {
        return owner ? notSent(pid, procNotFound, "another has its name on the bus") : notSentAsTheBusIsSilent(pid);
    }
    return noErr;
}

OSErr AppleEventTransport::send(const AppleEventContents &event)
{
    // Who received the last event gets this one at once: a question to the bus, before the event or behind it, would
    // take half as long as the event itself.
    QString receiver = m_receiver.uniqueNameOf(event.target.value_or(0));
    std::optional<QDBusMessage> message = messageOf(event, receiver);
    if (!message) {
        return notSent(event.target.value_or(0), paramErr, "this event cannot be a message");
    }
    if (receiver.isNull()) {
        m_receiver.watch(*event.target);
        if (const OSErr error = findReceiver(*event.target, receiver); error != noErr) {
            return error;
        }
        m_receiver.set(receiver);
        message = messageOf(event, receiver);
    }
    if (!m_bus.isConnected() || !m_bus.connection().send(*message)) {
        return notSentAsTheBusIsSilent(*event.target);
    }
    m_mayBeUnsent = true;
    return noErr;
}

void AppleEventTransport::flush()
{
    if (std::exchange(m_mayBeUnsent, false)) {
        m_bus.flush();
    }
}

OSErr AppleEventTransport::sendAndWait(const AppleEventContents &event, std::chrono::milliseconds timeout) const
{
    if (!messageOf(event)) {
        return notSent(event.target.value_or(0), paramErr, "this event cannot be a message");
    }
    QString uniqueName;
    if (const OSErr error = findReceiver(*event.target, uniqueName); error != noErr) {
        return error;
    }
    // To the unique name also because Qt answers a blocking call to this process itself, and knows it by that.
    const QDBusMessage message = *messageOf(event, uniqueName);
    return statusOf(m_bus.connection().call(message, QDBus::Block, static_cast<int>(timeout.count())));
}

WorkInTurns::Work AppleEventTransport::workFor(const QDBusMessage &call, const QDBusConnection &connection)
{
    if (call.member() != QLatin1String("Send")) {
        return {};
    }
    // A sender that is known now may have gone when its turn comes. Of another the bus is asked in that turn: who comes
    // by one connection after the other would have all others wait for the answers.
    return [this, call, connection, known = m_peers.knownProcessOf(call.service())] {
        receive(call, connection, known ? known : m_peers.processOf(call.service()));
    };
}

void AppleEventTransport::receive(const QDBusMessage &message, const QDBusConnection &connection,
                                  std::optional<qint64> sender)
{
    std::optional<AppleEventContents> event = eventOf(message);
    if (!event) {
        refuse(message, connection, QDBusError::InvalidArgs,
               QStringLiteral("Not an event: see the interface's description"));
        return;
    }
    // A sender that has closed its connection may well be the process that it says: it is not known, which is not to be
    // nobody.
    if (sender.value_or(0) != 0) {
        event->sender = static_cast<SInt32>(*sender);
    }
    const OSErr status = handle(std::move(*event));
    if (message.isReplyRequired()) {
        connection.send(message.createReply(int(status)));
    }
}

OSErr AppleEventTransport::handle(AppleEventContents event)
{
    // Nothing may be thrown through QtDBus: it would tell the sender that there is no such object.
    try {
        return m_handler(std::move(event));
    } catch (const std::exception &failure) {
        qCCritical(linkLog, "an event handler failed: %s", failure.what());
    } catch (...) {
        qCCritical(linkLog, "an event handler failed");
    }
    return errAEEventFailed;
}
