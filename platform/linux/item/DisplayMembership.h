#pragma once

#include <QByteArray>

#include <sys/types.h>

/// Which processes belong to which display. A user may have several displays at once, and they share one bus where the
/// bus belongs to the user and not to the session.

/// The display of a process, by two variables of its environment; a variable that is not set is empty.
struct DisplayNames {
    QByteArray display;        ///< DISPLAY
    QByteArray waylandDisplay; ///< WAYLAND_DISPLAY
};

/// From an environment as it stands in /proc: assignments with a zero after each.
[[nodiscard]] DisplayNames displayNames(const QByteArray &environment);

/// Whether both name the same display. The X displays are compared if both name one, without the screen's number, and
/// with "unix" for the local host; else the Wayland displays. The X display goes first because programs that are
/// started in a Wayland session for another X display, as those of a remote-desktop server are, still name the Wayland
/// display they came from.
[[nodiscard]] bool isSameDisplay(const DisplayNames &one, const DisplayNames &other);

/// Whether a process belongs to the display of this program: it is a client of this X server, or its environment names
/// this display. True of every process while this program has no X server. Main thread only.
[[nodiscard]] bool isOfThisDisplay(pid_t pid);
