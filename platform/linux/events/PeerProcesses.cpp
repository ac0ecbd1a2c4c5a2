#include "platform/linux/events/PeerProcesses.h"

#include "platform/linux/include/SessionBus.h"

PeerProcesses::PeerProcesses(const SessionBus &bus)
    : m_bus(bus)
{
    m_watcher.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(&m_watcher, &QDBusServiceWatcher::serviceUnregistered, this, &PeerProcesses::forget);
    connect(&bus, &SessionBus::connected, this, &PeerProcesses::startAnew);
    connect(&bus, &SessionBus::disconnected, this, &PeerProcesses::startAnew);
    startAnew();
}

std::optional<qint64> PeerProcesses::processOf(const QString &uniqueName)
{
    if (const auto it = m_known.constFind(uniqueName); it != m_known.cend()) {
        return *it;
    }
    // Watched before it is asked about, so that its end cannot fall between the two.
    m_watcher.addWatchedService(uniqueName);
    const std::optional<qint64> pid = m_bus.processOf(uniqueName);
    if (pid.value_or(0) == 0) {
        m_watcher.removeWatchedService(uniqueName);
        return pid;
    }
    return *m_known.insert(uniqueName, *pid);
}

void PeerProcesses::startAnew()
{
    // Another bus counts its unique names from the start again.
    m_known.clear();
    m_watcher.setWatchedServices({});
    m_watcher.setConnection(m_bus.connection());
}

void PeerProcesses::forget(const QString &uniqueName)
{
    m_known.remove(uniqueName);
    m_watcher.removeWatchedService(uniqueName);
}
