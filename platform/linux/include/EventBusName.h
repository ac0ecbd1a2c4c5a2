#pragma once

#include <QString>

#include <optional>

/// Where on the session bus a process receives events; see resources/dbus/com.tamborel.kivune.AppleEvents.xml.
[[nodiscard]] inline QString eventBusName(qint64 pid)
{
    return QStringLiteral("com.tamborel.kivune.p%1").arg(pid);
}

/// The process that such a name belongs to; nothing for any other name.
[[nodiscard]] inline std::optional<qint64> processOfEventBusName(const QString &name)
{
    const qsizetype digits = eventBusName(0).size() - 1;
    const qint64 pid = name.mid(digits).toLongLong();
    return pid > 0 && name == eventBusName(pid) ? std::optional(pid) : std::nullopt;
}

[[nodiscard]] inline QString eventObjectPath()
{
    return QStringLiteral("/com/tamborel/kivune/AppleEvents");
}

[[nodiscard]] inline QString eventInterface()
{
    return QStringLiteral("com.tamborel.kivune.AppleEvents");
}
