#pragma once

#include <Carbon/Carbon.h>

/// Handles every event of the link (kMenuEventClass, kMenuEventID). The sender of kMenuEvtSetOwner becomes the owner;
/// every other command is carried out for the owner only, and ignored, with noErr, from anybody else. `reply` and
/// `refcon` are not used. errAEEventFailed for a null event; the read's error when command or sender is missing; else
/// the command's result, which is noErr for an unknown one.
OSErr __ae_handler(const AppleEvent *event, AppleEvent *reply, SRefCon refcon);
