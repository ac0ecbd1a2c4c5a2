#pragma once

#include <QString>

#include <chrono>

/// Where the session bus is: DBUS_SESSION_BUS_ADDRESS, else $XDG_RUNTIME_DIR/bus, which need not exist. Empty when
/// neither is set. Addresses that start a bus ("autolaunch:") or forbid one ("disabled:") count as none.
[[nodiscard]] QString sessionBusAddress();

enum class BusState {
    Answers,
    Absent,  ///< Nothing accepts the connection.
    Unusable ///< The connection is accepted, or waits for that, but Hello is refused or gets no answer.
};

struct ProbedBus {
    BusState state;
    QString address; ///< The one entry of the address that answers; empty when none does.
};

/// Connects to each bus of an address, as a client does, until one answers Hello, and disconnects again; `timeout` is
/// for all of them together. A bus that is not behind a local socket counts as one that answers, and so does one that
/// asks for more than this process's user to let it in.
[[nodiscard]] ProbedBus probeBus(const QString &address,
                                 std::chrono::milliseconds timeout = std::chrono::milliseconds(500));
