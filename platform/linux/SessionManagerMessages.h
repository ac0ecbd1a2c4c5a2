#pragma once

/// What the X session manager says to this process (X Session Management Protocol, over ICE), for whoever keeps the
/// event loop, which would hear it, from running. Main thread only.
namespace SessionManagerMessages
{

/// Knows of each session manager that is joined from now on. To be called before the application object is made.
void hear();

/// Handles what has come by now as the event loop would, and returns without waiting for more.
void handle();

} // namespace SessionManagerMessages
