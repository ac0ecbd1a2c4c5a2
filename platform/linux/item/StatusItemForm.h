#pragma once

#include <QByteArray>

/// Where a status item is drawn. One at a time.
enum class StatusItemForm {
    None,     ///< Nowhere: not yet placed, or its host has just gone and may come back.
    Tray,     ///< In the X tray: a window of the item's own, so that its place and its clicks are known.
    Notifier, ///< By a StatusNotifierItem host on the bus, which says that it was pressed but not where it is.
    Strip     ///< By itself in the screen's corner.
};

/// The StatusNotifierItem hosts that a session's bus has: all that there are draw each item.
enum class NotifierHosts {
    None,
    Ours,  ///< On this display only.
    Shared ///< One is on another display: the item, and its menu, must not appear there.
};

/// The hosts that a session has.
struct StatusItemHosts {
    bool tray = false;
    NotifierHosts notifier = NotifierHosts::None;
    bool trayIsProxy = false; ///< It draws nothing itself, but hands windows on to a notifier host.
};

/// Whether the hosts have had the time to settle since the last change.
enum class Settling { Underway, Over };

/// The form that suits the hosts once they have settled. A tray is preferred to a notifier host, for it tells where the
/// item is; but not a proxy, behind which the item would be a picture of a window, with that window's place. Hosts that
/// are shared count as none, and so does a proxy, which would hand the item on to them.
[[nodiscard]] StatusItemForm wantedForm(StatusItemHosts hosts);

/// The form that follows the `present` one (None for a new item) now. A tray follows at once, every other form only
/// when the hosts have settled: a panel that rebuilds itself is back within a moment and must not make the strip
/// flicker, and a panel that speaks both protocols may announce its bus name first. Until then the present form stays,
/// as long as its host is there.
[[nodiscard]] StatusItemForm pickForm(StatusItemHosts hosts, StatusItemForm present, Settling settling);

/// For a line of the log: "the item is ...".
[[nodiscard]] const char *description(StatusItemForm form);
/// For that line: "there is ...".
[[nodiscard]] QByteArray description(StatusItemHosts hosts);
