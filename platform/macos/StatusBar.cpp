#include "platform/StatusBar.h"

#include "platform/macos/NativeWindows.h"

// The system has one menu bar per screen, always at the top, all of one thickness.
StatusBar StatusBar::around(NSRect)
{
    return {Edge::Top, static_cast<float>(NativeWindows::statusBarThickness())};
}
