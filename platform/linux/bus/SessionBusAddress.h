#pragma once

#include <QString>

#include <chrono>

/// Where the session bus is: DBUS_SESSION_BUS_ADDRESS, else $XDG_RUNTIME_DIR/bus, which need not exist. Empty when
/// neither is set. Addresses that start a bus ("autolaunch:") or forbid one ("disabled:") count as none.
[[nodiscard]] QString sessionBusAddress();

enum class BusState {
    Answers,
    Absent, ///< Nobody takes the connection.
    Silent  ///< The connection is taken, or waits to be, and not a word comes.
};

struct ProbedBus {
    BusState state;
    QString address; ///< The one entry of the address that answers; empty when none does.
};

/// Says the first word to each bus of an address, as a client does, and waits for an answer: `limit` in all. A bus at
/// the other end of anything but a local socket is taken to answer.
[[nodiscard]] ProbedBus probeBus(const QString &address,
                                 std::chrono::milliseconds limit = std::chrono::milliseconds(500));
