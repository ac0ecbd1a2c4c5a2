#include "platform/MainScreen.h"

#include "platform/ScreenCoordinates.h"

#include <Carbon/Carbon.h>

namespace MainScreen
{

namespace
{

// Core Graphics counts the screen in points from the top left, as Qt does, so that the ratio between the two is 1.
ScreenCoordinates screenCoordinates()
{
    const CGRect bounds = CGDisplayBounds(CGMainDisplayID());
    return {QRect(static_cast<int>(bounds.origin.x), static_cast<int>(bounds.origin.y),
                  static_cast<int>(bounds.size.width), static_cast<int>(bounds.size.height)),
            1.0};
}

} // namespace

std::optional<NSRect> frame()
{
    const ScreenCoordinates screen = screenCoordinates();
    if (screen.mainScreen.isEmpty()) {
        return std::nullopt;
    }
    return screen.frame();
}

NSPoint mouseLocation()
{
    CGEventRef now = CGEventCreate(nullptr);
    const CGPoint mouse = now ? CGEventGetLocation(now) : CGPoint{0, 0};
    if (now) {
        CFRelease(now);
    }
    const QRect main = screenCoordinates().mainScreen;
    return {static_cast<float>(mouse.x - main.x()), static_cast<float>(main.y() + main.height() - mouse.y)};
}

QPoint toQt(NSPoint point)
{
    return screenCoordinates().toQt(point);
}

NSRect fromQt(const QRect &rect)
{
    return screenCoordinates().fromQt(rect);
}

} // namespace MainScreen
