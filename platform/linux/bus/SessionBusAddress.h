#pragma once

#include <QString>

/// Where the session bus is: DBUS_SESSION_BUS_ADDRESS, else $XDG_RUNTIME_DIR/bus, which need not exist. Empty when
/// neither is set. Addresses that start a bus ("autolaunch:") or forbid one ("disabled:") count as none.
[[nodiscard]] QString sessionBusAddress();
