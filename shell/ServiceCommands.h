#pragma once

#include <Carbon/Carbon.h>

/// What the service commands, one function for each event that carries parameters. Main thread only.

/// kMenuEvtSetOptions: the menu's flags, then the allowed commands; each stays as it is when its parameter is missing.
/// errAEEventFailed for a null event, or when commands are announced but the list cannot be read: flags that came with
/// it are in force all the same.
OSErr __cmd_setopt(const AppleEvent *event);
