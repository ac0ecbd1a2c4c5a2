#pragma once

#include "platform/linux/events/AppleEventContents.h"
#include "platform/linux/events/PeerProcesses.h"
#include "platform/linux/events/WorkInTurns.h"

#include <QDBusVirtualObject>

#include <chrono>
#include <functional>

class SessionBus;

/// Carries events over the session bus, by the contract resources/dbus/com.tamborel.kivune.AppleEvents.xml: an event is
/// sent to its target, which receives it and then handles it. Main thread only.
class AppleEventTransport final : public QDBusVirtualObject
{
    Q_OBJECT

public:
    /// Handles a received event, whose sender is set, and returns the status. An exception is logged, and the status is
    /// errAEEventFailed.
    using Handler = std::function<OSErr(AppleEventContents event)>;

    /// `bus` must outlive this object. When `maxWaiting` messages of one sender wait to be handled, events or not, more
    /// of them are refused: with the error LimitsExceeded, or without a word when the sender wants no reply.
    AppleEventTransport(SessionBus &bus, Handler handler, std::size_t maxWaiting = WorkInTurns::defaultMaxWaiting);
    ~AppleEventTransport() override;

    /// Receives events from now on: serves the object and owns the bus name, again whenever the bus comes back.
    void startReceiving();
    void stopReceiving();

    /// Sends without waiting. paramErr for an event that cannot be a message (no target, or a zero byte in a code);
    /// procNotFound, and nothing sent, when the target is no running process or receives no events; connectionInvalid
    /// without a bus that answers. Returns once the bus has the event: one that is sent just before the program ends is
    /// not lost.
    [[nodiscard]] OSErr send(const AppleEventContents &event);
    /// Sends and blocks until the handler's status is there, which is the result; errAETimeout when it does not come
    /// within `timeout`. No other events are handled meanwhile.
    [[nodiscard]] OSErr sendAndWait(const AppleEventContents &event, std::chrono::milliseconds timeout) const;

    [[nodiscard]] QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    enum class Reception { Off, On };

    /// A process that receives events, and its unique name on the present bus, which nobody else will ever have there.
    struct Target {
        SInt32 pid;
        QString uniqueName;
    };

    void registerOnBus();
    void unregisterFromBus();
    [[nodiscard]] OSErr findTarget(SInt32 pid);
    [[nodiscard]] OSErr sendToTarget(const QDBusMessage &message);
    /// Asks the bus for the unique name under which a process receives events.
    [[nodiscard]] OSErr findReceiver(SInt32 pid, QString &uniqueName) const;
    void receive(const QDBusMessage &message, const QDBusConnection &connection, std::optional<qint64> sender);
    [[nodiscard]] OSErr handle(AppleEventContents event);
    /// Describes the object to who asks for that, and refuses all else.
    static void answerOther(const QDBusMessage &message, const QDBusConnection &connection);

    SessionBus &m_bus;
    Handler m_handler;
    PeerProcesses m_peers;
    WorkInTurns m_incoming;
    Reception m_reception = Reception::Off;
    std::optional<Target> m_target; ///< The last one that an event was sent to.
};
