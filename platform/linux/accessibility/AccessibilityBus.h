#pragma once

#include "platform/linux/include/SessionBus.h"

#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QObject>

#include <memory>

/// Opens the agent to screen readers while there are any, and closes it again. Whether there are is what org.a11y.Bus
/// on the session bus says (AT-SPI's interface org.a11y.Status), and is asked anew whenever that comes, changes its
/// mind, or the session bus itself comes back. Nothing is started by asking, and nobody waits for an answer; only to
/// be let in to the accessibility bus takes 500 ms at the most. AT_SPI_BUS_ADDRESS and QT_LINUX_ACCESSIBILITY_ALWAYS_ON
/// mean what they mean to Qt. Main thread only.
class AccessibilityBus final : public QObject
{
    Q_OBJECT

public:
    /// `bus` must outlive this object.
    explicit AccessibilityBus(SessionBus &bus, QObject *parent = nullptr);
    ~AccessibilityBus() override;

private Q_SLOTS:
    void ask();

private:
    using Handler = void (AccessibilityBus::*)(const QDBusMessage &answer);

    void watchBus();
    void send(const QDBusConnection &connection, const QDBusMessage &question, Handler handler);
    void hearStatus(const QDBusMessage &answer);
    void hearAddress(const QDBusMessage &answer);
    void connectTo(const QString &address);
    void hearRegistry(const QDBusMessage &answer);
    void open();

    SessionBus &m_bus;
    std::unique_ptr<QDBusServiceWatcher> m_watcher;
    std::unique_ptr<QDBusPendingCallWatcher> m_question; ///< The one that waits for its answer.
    bool m_isOpen = false;
    bool m_isRegistered = false; ///< It has been open.
};
