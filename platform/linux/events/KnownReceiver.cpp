#include "platform/linux/events/KnownReceiver.h"

#include "platform/linux/include/EventBusName.h"
#include "platform/linux/include/SessionBus.h"
#include "platform/processes/ProcessWatch.h"

#include <QCoreApplication>

KnownReceiver::KnownReceiver(const SessionBus &bus)
    : m_bus(bus)
{
    m_watcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) {
                if (owner != m_uniqueName) {
                    m_uniqueName.clear();
                }
            });
    // Another bus counts its unique names from the start again.
    connect(&bus, &SessionBus::connected, this, &KnownReceiver::forget);
    connect(&bus, &SessionBus::disconnected, this, &KnownReceiver::forget);
}

void KnownReceiver::watch(pid_t pid)
{
    m_uniqueName.clear();
    if (m_pid != pid) {
        forget();
        m_watcher.setConnection(m_bus.connection());
        m_watcher.addWatchedService(eventBusName(pid));
        m_pid = pid;
    }
    m_hasEnded = watchProcess(pid);
}

void KnownReceiver::set(const QString &uniqueName)
{
    m_uniqueName = uniqueName;
}

void KnownReceiver::forget()
{
    m_pid = 0;
    m_uniqueName.clear();
    m_watcher.setWatchedServices({});
}

QString KnownReceiver::uniqueNameOf(pid_t pid)
{
    if (m_pid != pid || m_uniqueName.isNull()) {
        return {};
    }
    // What the bus has said waits for the event loop, which a program that only sends may not have.
    QCoreApplication::sendPostedEvents(&m_watcher);
    return m_hasEnded() ? QString() : m_uniqueName;
}
