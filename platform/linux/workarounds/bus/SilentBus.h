#pragma once

#include <QString>

#include <chrono>

/// Finds out whether a bus answers before Qt is let at it.
///
/// Symptom: who connects to a bus waits for its answer to Hello, and there is no way to say for how long: libdbus gives
///   up after 25 s, and all the while the thread stands still that wants the connection, and every other connection of
///   the program with it. A bus that has stopped takes connections, for the kernel does that, and never answers.
/// Of: QtDBus (6.4 to 6.11), which connects by dbus_bus_register of libdbus, all versions. No report found.
/// Left out: an agent that stands still for 25 s of every 30 beside a bus that hangs. The system bus is asked about the
///   session by a connection of another kind for the same reason: platform/linux/screen/SessionDictionary.cpp.
/// Still needed? WorkaroundNeed.SilentBus tells.

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
