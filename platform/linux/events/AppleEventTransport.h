#pragma once

#include "platform/linux/events/AppleEventContents.h"
#include "platform/linux/events/PeerProcesses.h"
#include "platform/linux/events/WorkInTurns.h"

#include <QDBusVirtualObject>

#include <chrono>
#include <functional>

class SessionBus;

/// Carries events over the session bus, by the contract resources/dbus/com.tamborel.kivune.AppleEvents.xml. Main thread
/// only.
class AppleEventTransport final : public QDBusVirtualObject
{
    Q_OBJECT

public:
    /// Handles an event that has come, its sender set, and says how that went. What it throws does not get further: it
    /// is logged, and the event has failed (errAEEventFailed).
    using Receiver = std::function<OSErr(AppleEventContents event)>;

    /// `bus` must outlive this object. When `maxWaiting` events of one sender wait to be handled, more of them are
    /// refused: with the error LimitsExceeded, or without a word when the sender wants no reply.
    AppleEventTransport(SessionBus &bus, Receiver receiver, std::size_t maxWaiting = WorkInTurns::kMaxWaiting);
    ~AppleEventTransport() override;

    /// Takes events from now on: serves the object and owns the bus name, again whenever the bus comes back.
    void startReceiving();
    void stopReceiving();

    /// Sends without waiting. paramErr for an event that cannot travel (no target, or a zero byte in a code);
    /// procNotFound, and nothing sent, when the target is no running process or takes no events; connectionInvalid
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

    /// A process that takes events, and its unique name on the present bus, which nobody else will ever have there.
    struct Taker {
        SInt32 pid;
        QString uniqueName;
    };

    void enter();
    void leave();
    [[nodiscard]] OSErr findTaker(SInt32 pid);
    [[nodiscard]] OSErr deliver(const QDBusMessage &message);
    [[nodiscard]] OSErr prepare(const AppleEventContents &event, QDBusMessage &message) const;
    void take(const QDBusMessage &message, const QDBusConnection &connection, std::optional<qint64> sender);
    [[nodiscard]] OSErr receive(AppleEventContents event);

    SessionBus &m_bus;
    Receiver m_receiver;
    PeerProcesses m_peers;
    WorkInTurns m_incoming;
    Reception m_reception = Reception::Off;
    std::optional<Taker> m_taker; ///< The last one that an event was sent to.
};
