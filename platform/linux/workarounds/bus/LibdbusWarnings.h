#pragma once

/// Has libdbus go on after it has warned of a wrong use of it. Programs that are started from here inherit it. To be
/// called before the first connection; main thread only.
///
/// Symptom: where a bus takes a connection and does not answer to Hello, or refuses it, QtDBus lets go of the
///   connection without closing it, and libdbus ends the process with SIGABRT.
/// Of: QtDBus (6.4 to 6.11) with libdbus, all versions. An early sighting: https://github.com/ibus/ibus/issues/111
/// Left out: such a bus ends the agent, 25 s later or at once. A probe goes ahead of QtDBus, but the bus may change
///   its mind in between.
/// Still needed? WorkaroundNeed.LibdbusWarnings tells.
void keepLibdbusFromAborting();
