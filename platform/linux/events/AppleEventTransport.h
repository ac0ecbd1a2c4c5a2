#pragma once

#include "platform/linux/bus/ObjectInTurns.h"
#include "platform/linux/events/AppleEventContents.h"
#include "platform/linux/events/KnownReceiver.h"
#include "platform/linux/events/PeerProcesses.h"

#include <chrono>
#include <functional>

class SessionBus;

/// Carries events over the session bus, by the contract resources/dbus/com.tamborel.kivune.AppleEvents.xml: an event is
/// sent to its target, which receives it and then handles it. Main thread only.
class AppleEventTransport final : public ObjectInTurns
{
    Q_OBJECT

public:
    /// Handles a received event, whose sender is set, and returns the status. An exception is logged, and the status is
    /// errAEEventFailed.
    using Handler = std::function<OSErr(AppleEventContents event)>;

    /// `bus` must outlive this object. When `maxWaiting` messages of one sender wait to be handled, events or not, more
    /// of them are refused.
    AppleEventTransport(SessionBus &bus, Handler handler, std::size_t maxWaiting = WorkInTurns::defaultMaxWaiting);
    ~AppleEventTransport() override;

    /// Receives events from now on: serves the object and owns the bus name, again whenever the bus comes back.
    void startReceiving();
    void stopReceiving();

    /// Sends without waiting. paramErr for an event that cannot be a message (no target, or a zero byte in a code);
    /// procNotFound, and nothing sent, when the target is no running process or receives no events; connectionInvalid
    /// without a bus.
    ///
    /// The bus is asked only about another target than the last, and about one that it has said to be gone since; when
    /// it does not answer, that is connectionInvalid, too. To a target that has just left the bus and runs on, an event
    /// is sent in vain until the bus has said so.
    [[nodiscard]] OSErr send(const AppleEventContents &event);
    /// Returns once the bus has all that was sent, after at most 500 ms. Qt sends from a thread of its own, and what a
    /// program sends just before it ends would be lost.
    void flush();
    /// Sends and blocks until the handler's status is there, which is the result; errAETimeout when it does not come
    /// within `timeout`. No other events are handled meanwhile.
    [[nodiscard]] OSErr sendAndWait(const AppleEventContents &event, std::chrono::milliseconds timeout) const;

private:
    enum class Reception { Off, On };

    [[nodiscard]] WorkInTurns::Work workFor(const QDBusMessage &call, const QDBusConnection &connection) override;
    void registerOnBus();
    void unregisterFromBus();
    /// Asks the bus for the unique name under which a process receives events.
    [[nodiscard]] OSErr findReceiver(SInt32 pid, QString &uniqueName) const;
    void receive(const QDBusMessage &message, const QDBusConnection &connection, std::optional<qint64> sender);
    [[nodiscard]] OSErr handle(AppleEventContents event);

    SessionBus &m_bus;
    Handler m_handler;
    PeerProcesses m_peers;
    Reception m_reception = Reception::Off;
    KnownReceiver m_receiver;
    bool m_mayBeUnsent = false; ///< Whether an event may still be in this process.
};
