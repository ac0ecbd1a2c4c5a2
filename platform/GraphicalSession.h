#pragma once

#include <QString>

namespace GraphicalSession
{

/// Prepares this process for the graphical session it was started in. To be called before the application object is
/// made. An empty string, or one line that says why there is no session to run in.
[[nodiscard]] QString prepare();

/// Makes this process a quiet part of the session: it no longer wakes up for what others do on the screen while it
/// shows nothing there itself, gives back the memory of windows that have gone, stores no pictures, and keeps from Qt
/// what would have it remember a window that has gone. To be called once the application object is there.
void settle();

/// Runs the application's event loop to its end. Does not return when the session has gone in the middle of it: the
/// process then ends with status 1.
void run();

} // namespace GraphicalSession
