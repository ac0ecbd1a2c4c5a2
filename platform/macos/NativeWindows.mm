#include "platform/macos/NativeWindows.h"

#import <AppKit/AppKit.h>

namespace
{

NSWindow *windowOf(WId window)
{
    return [reinterpret_cast<NSView *>(window) window];
}

/// The system would rather have the active program decide, in a call that older systems lack.
void activateProgram()
{
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
    [[NSApplication sharedApplication] activateIgnoringOtherApps:YES];
#pragma clang diagnostic pop
}

} // namespace

double NativeWindows::statusBarThickness()
{
    return [[NSStatusBar systemStatusBar] thickness];
}

void NativeWindows::orderFront(WId window)
{
    [windowOf(window) orderFrontRegardless];
}

void NativeWindows::activate(WId window)
{
    activateProgram();
    [windowOf(window) makeKeyWindow];
}

void NativeWindows::setStatusLevel(WId window)
{
    [windowOf(window) setLevel:NSStatusWindowLevel];
}

void NativeWindows::popUpMenu(NSMenu *menu, double x, double y)
{
    [menu popUpMenuPositioningItem:nil atLocation:NSPoint{x, y} inView:nil];
}
