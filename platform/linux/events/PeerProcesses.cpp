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
    if (const std::optional<qint64> known = knownProcessOf(uniqueName)) {
        return known;
    }
    // Watched before it is asked about, so that its end cannot fall between the two.
    m_watcher.addWatchedService(uniqueName);
    const std::optional<qint64> pid = m_bus.processOf(uniqueName);
    if (pid == 0) {
        forget(uniqueName);
    } else if (pid) {
        m_known.insert(uniqueName, *pid);
    } else {
        m_watcher.removeWatchedService(uniqueName);
    }
    return pid;
}

std::optional<qint64> PeerProcesses::knownProcessOf(const QString &uniqueName) const
{
    const auto it = m_known.constFind(uniqueName);
    if (it != m_known.cend()) {
        return *it;
    }
    return m_gone.contains(uniqueName) ? std::optional<qint64>(0) : std::nullopt;
}

void PeerProcesses::startAnew()
{
    // Another bus counts its unique names from the start again.
    m_known.clear();
    m_gone.clear();
    m_watcher.setWatchedServices({});
    m_watcher.setConnection(m_bus.connection());
}

void PeerProcesses::forget(const QString &uniqueName)
{
    constexpr qsizetype maxGone = 1000;
    m_known.remove(uniqueName);
    m_watcher.removeWatchedService(uniqueName);
    if (m_gone.size() == maxGone) {
        m_gone.clear(); // They are asked about once more.
    }
    m_gone.insert(uniqueName);
}
