#pragma once

/// Has libdbus go on after it has warned of a wrong use of it, of which QtDBus makes one: where a bus takes a
/// connection and does not answer to Hello, or refuses it, QtDBus (6.4 to 6.11) lets go of the connection without
/// closing it, and libdbus ends the process with SIGABRT. A probe goes ahead of QtDBus, but the bus may change its mind
/// in between. Without this such a bus ends the program, 25 s later or at once. Programs that are started from here
/// inherit it. To be called before the first connection; main thread only.
void keepLibdbusFromAborting();
