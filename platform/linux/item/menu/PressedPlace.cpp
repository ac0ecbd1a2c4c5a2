#include "platform/linux/item/menu/PressedPlace.h"

#include <QGuiApplication>
#include <QScreen>

QList<QRect> presentScreens()
{
    QList<QRect> places;
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens) {
        places.append(screen->geometry());
    }
    return places;
}

std::optional<QPoint> placeSincePress(const std::optional<PressedPlace> &last, const QList<QRect> &screens)
{
    return last && last->screens == screens ? std::optional(last->place) : std::nullopt;
}
