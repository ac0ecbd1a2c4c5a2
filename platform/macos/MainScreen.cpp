#include "platform/MainScreen.h"

#include <Carbon/Carbon.h>

namespace MainScreen
{

NSPoint mouseLocation()
{
    CGEventRef now = CGEventCreate(nullptr);
    const CGPoint mouse = now ? CGEventGetLocation(now) : CGPoint{0, 0};
    if (now) {
        CFRelease(now);
    }
    const QRect main = askWindowSystem().mainScreen;
    return {static_cast<float>(mouse.x - main.x()), static_cast<float>(main.y() + main.height() - mouse.y)};
}

ScreenCoordinates askWindowSystem()
{
    // Core Graphics counts the screen in points from the top left, as Qt does, so that the ratio between the two is 1.
    const CGRect bounds = CGDisplayBounds(CGMainDisplayID());
    return {QRect(static_cast<int>(bounds.origin.x), static_cast<int>(bounds.origin.y),
                  static_cast<int>(bounds.size.width), static_cast<int>(bounds.size.height)),
            1.0};
}

} // namespace MainScreen
