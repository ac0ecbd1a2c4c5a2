#include "platform/linux/workarounds/bus/LibdbusWarnings.h"

#include <QByteArray>

void keepLibdbusFromAborting()
{
    // Read by libdbus with its first warning, and only then; there is no function for it.
    qputenv("DBUS_FATAL_WARNINGS", "0");
}
