#pragma once

/// Stands where Apple's umbrella header of the same name stands on macOS: it declares the few C interfaces that the
/// agent uses, under their own names, so that shell/ and menu/ read the same on both systems. platform/linux/
/// implements them over the D-Bus session bus, /proc, X11 and logind.

#include <Carbon/AppleEvents.h>
#include <Carbon/CoreFoundation.h>
#include <Carbon/CoreGraphics.h>
#include <Carbon/MacTypes.h>
#include <Carbon/Processes.h>
