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
