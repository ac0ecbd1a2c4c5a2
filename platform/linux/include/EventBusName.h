#pragma once

#include "platform/ProductTexts.h"

#include <QString>

#include <optional>

/// Where on the session bus a process receives events; see resources/dbus/com.tamborel.kivune.AppleEvents.xml.
[[nodiscard]] inline QString eventBusName(qint64 pid)
{
    return ProductTexts::eventBusName + QString::number(pid);
}

/// The process that such a name belongs to; nothing for any other name.
[[nodiscard]] inline std::optional<qint64> processOfEventBusName(const QString &name)
{
    const qint64 pid = name.mid(ProductTexts::eventBusName.size()).toLongLong();
    return pid > 0 && name == eventBusName(pid) ? std::optional(pid) : std::nullopt;
}

[[nodiscard]] inline QString eventObjectPath()
{
    return ProductTexts::eventObjectPath;
}

[[nodiscard]] inline QString eventInterface()
{
    return ProductTexts::eventInterface;
}
