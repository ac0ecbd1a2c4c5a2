#pragma once

#include <Carbon/Carbon.h>

/// What the service commands, one function for each event that carries parameters. Main thread only.

/// kMenuEvtSetOptions: the menu's flags, then the allowed commands; each stays as it is when its parameter is missing.
/// errAEEventFailed for a null event, or when commands are announced but the list cannot be read: flags that came with
/// it are in force all the same.
OSErr __cmd_setopt(const AppleEvent *event);

/// kMenuEvtDoHint: shows the text that comes with it at once, as a message of 370 x 55 points. The text ends at its
/// first zero byte; one that is not UTF-8 gives a message without text. Nothing is shown, and that is no error, when
/// the length is missing or 0. errAEEventFailed for a null event, or when a text is announced but cannot be read.
OSErr __cmd_dohint(const AppleEvent *event);
