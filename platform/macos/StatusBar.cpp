#include "platform/StatusBar.h"

#include "platform/macos/NativeWindows.h"

namespace
{
constexpr double fallbackThickness = 22;
}

// The system has one menu bar per screen, always at the top, all of one thickness.
StatusBar StatusBar::around(NSRect)
{
    const double thickness = NativeWindows::areThere() ? NativeWindows::statusBarThickness() : fallbackThickness;
    return {Edge::Top, static_cast<float>(thickness)};
}
