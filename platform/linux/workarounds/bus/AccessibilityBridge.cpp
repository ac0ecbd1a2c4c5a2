#include "platform/linux/workarounds/bus/AccessibilityBridge.h"

#include <QAccessible>
#include <QByteArray>
#include <QDBusConnection>
#include <QList>
#include <QPointer>

#include <dlfcn.h>
#include <utility>

namespace
{

constexpr char accessibilityBusVariable[] = "AT_SPI_BUS_ADDRESS";
constexpr char noBus[] = "disabled:";

/// What Qt calls its connection to the accessibility bus. It takes one of this name for its own.
QString connectionName()
{
    return QStringLiteral("a11y");
}

/// The objects that are made in this thread while it lives, as Qt tells the tools that look into programs.
class ObjectsMade final
{
public:
    ObjectsMade()
    {
        // Not in a public header: the table's version, its size, Qt's version, and who is told of each object.
        constexpr quintptr knownVersion = 3;
        auto *table = static_cast<quintptr *>(::dlsym(RTLD_DEFAULT, "qtHookData"));
        if (table && table[0] >= knownVersion) {
            list = &m_objects;
            m_hook = table + 3;
            m_before = std::exchange(*m_hook, reinterpret_cast<quintptr>(&ObjectsMade::add));
        }
    }
    ~ObjectsMade()
    {
        if (m_hook) {
            *m_hook = m_before;
            list = nullptr;
        }
    }
    ObjectsMade(const ObjectsMade &) = delete;
    ObjectsMade &operator=(const ObjectsMade &) = delete;

    [[nodiscard]] const QList<QPointer<QObject>> &objects() const noexcept { return m_objects; }

private:
    static void add(QObject *object)
    {
        if (list) {
            list->append(object);
        }
    }

    static thread_local QList<QPointer<QObject>> *list;

    quintptr *m_hook = nullptr;
    quintptr m_before = 0;
    QList<QPointer<QObject>> m_objects;
};

thread_local QList<QPointer<QObject>> *ObjectsMade::list = nullptr;

/// Qt's own object behind the bridge, which has another name in each version of Qt; null when none was found.
QPointer<QObject> bridgesConnection;

} // namespace

void keepQtFromLaunchingOrAwaitingABus(const QString &address, BusUse use)
{
    constexpr char variable[] = "DBUS_SESSION_BUS_ADDRESS";
    const QByteArray usable = address.isEmpty() ? QByteArrayLiteral("disabled:") : address.toLocal8Bit();
    qputenv(variable, usable);
    if (use == BusUse::Hopeless) {
        // Qt asks for its shared connection only once: had without a bus, it stays without. The variable itself is the
        // bridge's only switch, but the programs started from here inherit that, and this one still needs it.
        qputenv(variable, noBus);
        static_cast<void>(QDBusConnection::sessionBus());
        qputenv(variable, usable);
    }
}

void AccessibilityBridge::makeClosed()
{
    // An address of the accessibility bus keeps it from the session bus, and with one that is none it is left waiting.
    const bool isSet = qEnvironmentVariableIsSet(accessibilityBusVariable);
    const QByteArray given = qgetenv(accessibilityBusVariable);
    qputenv(accessibilityBusVariable, noBus);
    const ObjectsMade made;
    static_cast<void>(QAccessible::isActive());
    for (const QPointer<QObject> &object : made.objects()) {
        if (object && object->metaObject()->indexOfSlot("connectA11yBus(QString)") >= 0) {
            bridgesConnection = object;
        }
    }
    if (isSet) {
        qputenv(accessibilityBusVariable, given);
    } else {
        qunsetenv(accessibilityBusVariable);
    }
}

QString AccessibilityBridge::connectTo(const QString &address)
{
    // Qt hands out one connection for a name, dead or alive.
    QDBusConnection::disconnectFromBus(connectionName());
    return QDBusConnection::connectToBus(address, connectionName()).isConnected() ? connectionName() : QString();
}

bool AccessibilityBridge::isConnected()
{
    return QDBusConnection(connectionName()).isConnected();
}

bool AccessibilityBridge::open()
{
    // The address does not count, since the connection is there.
    return bridgesConnection && QMetaObject::invokeMethod(bridgesConnection, "connectA11yBus", Qt::DirectConnection,
                                                          Q_ARG(QString, QString::fromLatin1(noBus)));
}

void AccessibilityBridge::close()
{
    if (bridgesConnection) {
        QMetaObject::invokeMethod(bridgesConnection, "serviceUnregistered", Qt::DirectConnection);
    }
}
