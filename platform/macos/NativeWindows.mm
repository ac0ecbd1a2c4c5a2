#include "platform/macos/NativeWindows.h"

#include <QGuiApplication>
#include <QMenu>

#import <AppKit/AppKit.h>

namespace
{

NSMenu *openMenu = nil;

NSWindow *windowOf(WId window)
{
    return [reinterpret_cast<NSView *>(window) window];
}

/// Since macOS 14 the system decides by what the user does whether a program that asks becomes the active one. Before,
/// the call without a wish was refused to one in the background.
void activateProgram()
{
    if (@available(macOS 14.0, *)) {
        [[NSApplication sharedApplication] activate];
        return;
    }
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
    [[NSApplication sharedApplication] activateIgnoringOtherApps:YES];
#pragma clang diagnostic pop
}

} // namespace

bool NativeWindows::areThere()
{
    return QGuiApplication::platformName() == QLatin1String("cocoa");
}

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
    NSWindow *const panel = windowOf(window);
    // Qt's dialogs are panels. Of such a kind they are the key window also in a program that is not the active one.
    if ([panel isKindOfClass:[NSPanel class]]) {
        [panel setStyleMask:[panel styleMask] | NSWindowStyleMaskNonactivatingPanel];
    }
    activateProgram();
    [panel makeKeyWindow];
}

void NativeWindows::setStatusLevel(WId window)
{
    [windowOf(window) setLevel:NSStatusWindowLevel];
}

void NativeWindows::popUpMenu(QMenu &menu, double x, double y)
{
    openMenu = menu.toNSMenu();
    [openMenu popUpMenuPositioningItem:nil atLocation:NSPoint{x, y} inView:nil];
    openMenu = nil;
}

void NativeWindows::closeMenu()
{
    [openMenu cancelTracking];
}
