#include "platform/linux/item/menu/PressedPlace.h"

#include "platform/MainScreen.h"
#include "platform/linux/include/MainDisplay.h"
#include "platform/linux/screen/windows/WorkArea.h"

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

std::optional<QPoint> endOfPanel(const QRect &monitor, const std::optional<QRect> &workArea)
{
    if (!workArea || !monitor.contains(*workArea)) {
        return std::nullopt;
    }
    const auto isPanel = [](int depth, int extent) { return depth > 0 && depth * 4 <= extent; };
    const int above = workArea->top() - monitor.top();
    const int below = monitor.bottom() - workArea->bottom();
    const int left = workArea->left() - monitor.left();
    const int right = monitor.right() - workArea->right();
    if (isPanel(above, monitor.height())) {
        return QPoint(monitor.right() - above / 2, monitor.top() + above / 2);
    }
    if (isPanel(below, monitor.height())) {
        return QPoint(monitor.right() - below / 2, monitor.bottom() - below / 2);
    }
    if (isPanel(right, monitor.width())) {
        return QPoint(monitor.right() - right / 2, monitor.bottom() - right / 2);
    }
    if (isPanel(left, monitor.width())) {
        return QPoint(monitor.left() + left / 2, monitor.bottom() - left / 2);
    }
    return std::nullopt;
}

QPoint placeUnseen(const std::optional<PressedPlace> &lastPress)
{
    if (const std::optional<QPoint> pressed = placeSincePress(lastPress, presentScreens())) {
        return *pressed;
    }
    const ScreenCoordinates screen = screenCoordinates();
    const std::optional<QPoint> end = endOfPanel(screen.mainScreen, WorkAreaQuestion().answer(screen.mainScreen));
    return end ? *end : screen.toDevice(MainScreen::mouseLocation());
}
