#include "platform/linux/workarounds/bus/AccessibilityBridge.h"

#include <QByteArray>
#include <QDBusConnection>

void keepQtFromLaunchingOrAwaitingABus(const QString &address, BusUse use)
{
    constexpr char variable[] = "DBUS_SESSION_BUS_ADDRESS";
    const QByteArray usable = address.isEmpty() ? QByteArrayLiteral("disabled:") : address.toLocal8Bit();
    qputenv(variable, usable);
    if (use == BusUse::Hopeless) {
        // Qt asks for its shared connection only once: had without a bus, it stays without. The variable itself is the
        // bridge's only switch, but the programs started from here inherit that, and this one still needs it.
        qputenv(variable, "disabled:");
        static_cast<void>(QDBusConnection::sessionBus());
        qputenv(variable, usable);
    }
}
