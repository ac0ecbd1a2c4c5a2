#pragma once

class QDBusConnection;

/// Has libdbus read from this connection without a limit. Worth a warning when that cannot be had.
///
/// Symptom: libdbus stops reading while the messages that it has read and that are still in use take up more than a
///   limit, 63 MB unless told otherwise, and QtDBus never goes on from there: it is the main thread that lets go of
///   messages, and another one that reads. The program is deaf from then on.
/// Of: libdbus, all versions, as QtDBus uses it (6.4 to 6.11). No report found.
/// Left out: whoever sends very much very fast cuts the agent off for ever.
/// Still needed? WorkaroundNeed.LibdbusLimit tells.
void readWithoutLimit(const QDBusConnection &connection);
