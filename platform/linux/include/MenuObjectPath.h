#pragma once

#include "platform/ProductTexts.h"

#include <QString>

/// Where on the session bus an agent has its menu opened; see resources/dbus/com.tamborel.kivune.Menu.xml.
[[nodiscard]] inline QString menuObjectPath()
{
    return ProductTexts::menuObjectPath;
}

[[nodiscard]] inline QString menuInterface()
{
    return ProductTexts::menuInterface;
}
