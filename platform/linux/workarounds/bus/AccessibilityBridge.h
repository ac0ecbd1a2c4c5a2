#pragma once

#include <QString>

/// Whether the session bus can be talked to.
enum class BusUse { Possible, Hopeless };

/// Keeps Qt from launching a session bus, and from waiting for one that says nothing. `address` is the bus that may be
/// used, empty for none. To be called before the application object is made; programs that are started from here
/// inherit the address.
///
/// Symptom: Qt looks for the session bus by itself, for its accessibility bridge, once the application's loop begins.
///   Without an address libdbus runs dbus-launch, and a bus that never answers holds up the loop for minutes.
/// Of: Qt 6.4 to 6.11, QSpiAccessibleBridge, and libdbus, all versions. No report found.
/// Left out: a bus that nobody ends in each session without one, and an agent without a menu beside a bus that hangs.
/// Still needed? WorkaroundNeed.AccessibilityBridge tells of the first, AccessibilityBridgeBesideABusThatHangs of the
///   second.
void keepQtFromLaunchingOrAwaitingABus(const QString &address, BusUse use);

/// Qt's bridge between its accessible objects and AT-SPI, opened and closed when the agent says so and not when Qt
/// does. Main thread only.
///
/// Symptom: the bridge finds out for itself whether a screen reader is there, by the session bus that there was when
///   the first widget was made, with calls that wait up to 25 s for each answer. Qt 6.4 asks once: it never hears of a
///   reader that is started later. It has no other switch, and its objects can be had by nobody; but their slots can
///   be called by name once they are seen being made.
/// Of: Qt 6.4 to 6.11, QSpiAccessibleBridge and the class of its connection. No report found.
/// Left out: a reader that is started after the agent is told nothing; one that hangs holds up the agent.
/// Still needed? WorkaroundNeed.LateScreenReader tells of the first, ScreenReaderThatHangs of the second.
namespace AccessibilityBridge
{

/// Has Qt make its bridge, closed: it asks no bus for anything. To be called behind the application object's
/// construction and before the first widget is made.
void makeClosed();

/// Connects Qt to the accessibility bus at this address, which answers. The name of the connection, by which
/// QDBusConnection has it; null when there is none. A connection from before is cut.
[[nodiscard]] QString connectTo(const QString &address);

/// Whether that connection is alive.
[[nodiscard]] bool isConnected();

/// Registers the agent with the registry on that connection, and serves its accessible objects there. Waits for the
/// registry, which is to have answered before. False where Qt has no bridge that can be opened.
[[nodiscard]] bool open();
/// Stops telling of events. The objects stay.
void close();

} // namespace AccessibilityBridge
