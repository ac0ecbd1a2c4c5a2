#pragma once

#include <QString>

namespace GraphicalSession
{

/// Prepares this process for the graphical session it was started in. To be called before the application object is
/// made. An empty string, or one line that says why there is no session to run in.
[[nodiscard]] QString prepare();

/// Makes this process a quiet part of the session, by the cures in platform/linux/workarounds/: it does not wake up for
/// what others do on the screen while it shows nothing there itself, gives the memory of closed windows back, keeps no
/// pixmap cache, and lets no mouse event reach a closed window. To be called once the application object is there.
void settle();

/// Says that this process is to end. Also from the handler of a signal.
void requestEnd() noexcept;

/// Whether this process is to end, because of requestEnd, because its display has gone, or because the session manager
/// has said so by now: for whoever keeps the event loop, which would learn of it, from running. Main thread only.
[[nodiscard]] bool isEnding();

/// Ends the application's event loop and all within it, and closes the menu that would keep it from ending. From the
/// main thread, and not from the handler of a signal.
void end();

/// Runs the application's event loop to its end. When the session ends before the loop does, the process ends here,
/// with status 1.
void run();

} // namespace GraphicalSession
