#pragma once

#include <QByteArray>

#include <sys/types.h>

/// Which processes belong to which display. A user may have several at once, and all of them share one bus where the
/// user's services do.

/// The display of a process, by two variables of its environment; empty what is not set.
struct DisplayNames {
    QByteArray display;        ///< DISPLAY
    QByteArray waylandDisplay; ///< WAYLAND_DISPLAY
};

/// From an environment as it stands in /proc: assignments with a zero after each.
[[nodiscard]] DisplayNames displayNames(const QByteArray &environment);

/// Whether the two name one display. The X display decides if both name one; it counts without its screen, and "unix"
/// is no other host. Programs that are started in a Wayland session and put on another X display, as a remote-desktop
/// server's are, go on naming the Wayland display they came from.
[[nodiscard]] bool isSameDisplay(const DisplayNames &one, const DisplayNames &other);

/// Whether a process belongs to the display of this program: it is a client of this X server, or its environment names
/// this display. True of every process while this program has no X server. Main thread only.
[[nodiscard]] bool isOfThisDisplay(pid_t pid);
