#include "platform/linux/workarounds/bus/LibdbusLimit.h"

#include "platform/LogCategories.h"

#include <QDBusConnection>

#include <dlfcn.h>
#include <limits>
#include <mutex>

void readWithoutLimit(const QDBusConnection &connection)
{
    // QtDBus is linked to libdbus, so that the function is there without its headers.
    using SetLimit = void (*)(void *connection, long bytes);
    if (const auto setLimit =
            reinterpret_cast<SetLimit>(::dlsym(RTLD_DEFAULT, "dbus_connection_set_max_received_size"))) {
        setLimit(connection.internalPointer(), std::numeric_limits<long>::max());
        return;
    }
    static std::once_flag once;
    std::call_once(
        once, [] { qCWarning(linkLog, "no way to lift libdbus's limit: a flood of messages may cut off the bus"); });
}
