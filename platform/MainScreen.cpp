#include "platform/MainScreen.h"

namespace MainScreen
{

namespace
{

int holders = 0;
ScreenCoordinates held;

} // namespace

ScreenCoordinates coordinates()
{
    return holders > 0 ? held : askWindowSystem();
}

std::optional<NSRect> frame()
{
    const ScreenCoordinates screen = coordinates();
    if (screen.mainScreen.isEmpty()) {
        return std::nullopt;
    }
    return screen.frame();
}

QPoint toQt(NSPoint point)
{
    return coordinates().toQt(point);
}

NSRect fromQt(const QRect &rect)
{
    return coordinates().fromQt(rect);
}

Held::Held()
{
    if (holders++ == 0) {
        held = askWindowSystem();
    }
}

Held::~Held()
{
    --holders;
}

} // namespace MainScreen
