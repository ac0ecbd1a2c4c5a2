#pragma once

#include <QByteArray>

#include <span>
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

/// To which display a process belongs, as far as this program can tell.
enum class DisplayMembership {
    Unknown,  ///< There is no such process, its environment cannot be read, or it names no display.
    OfThis,   ///< This program's display.
    OfAnother ///< Its environment names another display.
};

/// What two environments, of a process and of this program, tell about the process.
[[nodiscard]] DisplayMembership membershipByNames(const DisplayNames &process, const DisplayNames &own);

/// A client of this X server is of this display, whatever its environment names; of another process it is the
/// environment that tells. Every process is of this display while this program has no X server. Main thread only.
[[nodiscard]] DisplayMembership membershipOf(pid_t pid);

/// Of processes that work together: of another display if one of them is, else of this one if one of them is.
[[nodiscard]] DisplayMembership membershipOfAll(std::span<const DisplayMembership> each);
