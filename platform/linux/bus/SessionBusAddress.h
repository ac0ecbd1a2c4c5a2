#pragma once

#include <QString>

#include <chrono>

/// Where the session bus is: DBUS_SESSION_BUS_ADDRESS, else $XDG_RUNTIME_DIR/bus, which need not exist. Empty when
/// neither is set. Addresses that start a bus ("autolaunch:") or forbid one ("disabled:") count as none.
[[nodiscard]] QString sessionBusAddress();

enum class BusState {
    Answers,
    Absent,  ///< Nobody takes the connection.
    Unusable ///< The connection is taken, or waits to be, but Hello is not answered, or refused.
};

struct ProbedBus {
    BusState state;
    QString address; ///< The one entry of the address that answers; empty when none does.
};

/// Joins each bus of an address, as a client does, until one answers to Hello, and leaves it again: `timeout` in all. A
/// bus at the other end of anything but a local socket, or one that wants to know more than this process's user, is
/// taken to answer.
[[nodiscard]] ProbedBus probeBus(const QString &address,
                                 std::chrono::milliseconds timeout = std::chrono::milliseconds(500));
