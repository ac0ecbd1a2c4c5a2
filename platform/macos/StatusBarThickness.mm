#include "platform/macos/StatusBarThickness.h"

#import <AppKit/AppKit.h>

double systemStatusBarThickness()
{
    return [[NSStatusBar systemStatusBar] thickness];
}
