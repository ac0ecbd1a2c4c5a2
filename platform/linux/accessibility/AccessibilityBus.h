#pragma once

#include "platform/linux/bus/StandingQuestion.h"

#include <QDBusPendingCallWatcher>
#include <QObject>

#include <memory>
#include <optional>

/// Opens the agent to screen readers while there are any, and closes it again. Whether there are is what org.a11y.Bus
/// on the session bus says (AT-SPI's interface org.a11y.Status), and is asked anew whenever that comes, changes its
/// mind, or the session bus itself comes back. Nothing is started by asking, and nobody waits for an answer; but to
/// be let in to the accessibility bus takes 500 ms at the most, and Qt waits, once, for the registry there: for up to
/// 25 s, had it not answered a question right before. AT_SPI_BUS_ADDRESS and QT_LINUX_ACCESSIBILITY_ALWAYS_ON
/// mean what they mean to Qt. Main thread only.
class AccessibilityBus final : public QObject
{
    Q_OBJECT

public:
    /// `bus` must outlive this object.
    explicit AccessibilityBus(SessionBus &bus, QObject *parent = nullptr);
    ~AccessibilityBus() override;

private:
    using Handler = void (AccessibilityBus::*)(const QDBusMessage &answer);

    void send(const QDBusConnection &connection, const QDBusMessage &question, Handler handler);
    void hearStatus(const QDBusMessage &answer);
    void hearAddress(const QDBusMessage &answer);
    void connectTo(const QString &address);
    void hearRegistry(const QDBusMessage &answer);
    void open();

    SessionBus &m_bus;
    std::optional<StandingQuestion> m_status;
    std::unique_ptr<QDBusPendingCallWatcher> m_question; ///< The one on the way there that waits for its answer.
    bool m_isOpen = false;
    bool m_isRegistered = false; ///< It has been open.
};
