#pragma once

#include <Carbon/CoreFoundation.h>

#include <cstddef>

/// The few Core Graphics calls that the agent makes.

/// The login session of this process, from logind: "kCGSessionLoginDoneKey" and "kCGSSessionOnConsoleKey", both
/// CFBooleans. Where logind knows no session, an X server that is itself a VNC server stands for a finished login away
/// from the console; any other gives null. The caller's to release. Takes 500 ms at most.
CFDictionaryRef CGSessionCopyCurrentDictionary();

using CGDirectDisplayID = UInt32;
using CGFloat = double;
using CGDisplayModeRef = struct CGDisplayMode *;

struct CGPoint {
    CGFloat x;
    CGFloat y;
};
struct CGSize {
    CGFloat width;
    CGFloat height;
};
struct CGRect {
    CGPoint origin;
    CGSize size;
};

inline constexpr CGDirectDisplayID kCGNullDirectDisplay = 0;

/// The RandR output that counts as the main display (platform/linux/include/MainDisplay.h); kCGNullDirectDisplay when
/// there is none. The calls below know the main display only: any other counts as none.
CGDirectDisplayID CGMainDisplayID();

/// The part of the screen that the display shows, in pixels, as the X server has it now; empty without a display.
CGRect CGDisplayBounds(CGDirectDisplayID display);

/// One dictionary for each mode of the display, in the server's order: "Width" and "Height" in pixels,
/// "UsableForDesktopGUI". Null without a display. Not the caller's: it lives until the next call.
CFArrayRef CGDisplayAvailableModes(CGDirectDisplayID display);

/// The display's present mode, the caller's to release; null without a display.
CGDisplayModeRef CGDisplayCopyDisplayMode(CGDirectDisplayID display);
std::size_t CGDisplayModeGetWidth(CGDisplayModeRef mode);  ///< In pixels; 0 for null.
std::size_t CGDisplayModeGetHeight(CGDisplayModeRef mode); ///< In pixels; 0 for null.
void CGDisplayModeRelease(CGDisplayModeRef mode);          ///< Null is allowed.
