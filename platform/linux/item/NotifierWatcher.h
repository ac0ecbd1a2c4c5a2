#pragma once

#include <QString>

/// Where the hosts of StatusNotifierItems are found on the bus: the well-known name, which is the interface too, and
/// the path of the watcher, with which items and hosts register.

[[nodiscard]] inline QString notifierWatcherName()
{
    return QStringLiteral("org.kde.StatusNotifierWatcher");
}

[[nodiscard]] inline QString notifierWatcherPath()
{
    return QStringLiteral("/StatusNotifierWatcher");
}
