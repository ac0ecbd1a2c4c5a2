#pragma once

#include <Carbon/Carbon.h>

/// Handles every event of the link (kMenuEventClass, kMenuEventID). Whoever sends kMenuEvtSetOwner becomes the owner;
/// of all others only the owner is heard, and strangers get noErr like everybody. `reply` and `refcon` are not used.
/// errAEEventFailed for a null event; the read's error when command or sender is missing; else the command's result,
/// which is noErr for an unknown one.
OSErr __ae_handler(const AppleEvent *event, AppleEvent *reply, SRefCon refcon);
