#pragma once

/// Where a status item is drawn. One at a time.
enum class StatusItemForm {
    None,     ///< Nowhere: not yet placed, or its host has just gone and may come back.
    Tray,     ///< In the X tray, whose protocol tells the item its place and its clicks.
    Notifier, ///< With a StatusNotifierItem host on the bus, which tells it neither.
    Strip     ///< By itself in the screen's corner.
};

/// The hosts that a session has.
struct StatusItemHosts {
    bool tray = false;
    bool notifier = false;
};

/// Whether the hosts have had the time to settle since the last change.
enum class Settling { Underway, Over };

/// The form that the hosts call for in the long run: the tray also where both are there.
[[nodiscard]] StatusItemForm wantedForm(StatusItemHosts hosts);

/// The form to take now, from the `present` one (None for a new item). A tray is taken at once, everything else after
/// settling: a panel that rebuilds itself is back within a moment and must not make the strip flicker, and one that
/// speaks both protocols may announce the bus name first. Meanwhile the present form stays if its host does.
[[nodiscard]] StatusItemForm pickForm(StatusItemHosts hosts, StatusItemForm present, Settling settling);
