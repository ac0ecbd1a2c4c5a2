#include "platform/linux/item/menu/PressedPlace.h"

#include "platform/MainScreen.h"
#include "platform/linux/include/ExecutableName.h"
#include "platform/linux/include/MainDisplay.h"
#include "platform/linux/include/SessionBus.h"
#include "platform/linux/screen/windows/WorkArea.h"
#include "platform/linux/workarounds/RelativePlace.h"

#include <QGuiApplication>
#include <QScreen>

namespace
{
std::optional<QPoint> endOfMainPanel()
{
    const QRect monitor = screenCoordinates().mainScreen;
    return endOfPanel(monitor, WorkAreaQuestion().answer(monitor));
}
} // namespace

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

QPoint placeAsTold(QPoint told, const QString &host)
{
    const auto program = [&] {
        return executableName(static_cast<pid_t>(SessionBus::instance().processOf(host).value_or(0)));
    };
    return mayBeWithinTheItem(told, program) ? endOfMainPanel().value_or(told) : told;
}

QPoint placeUnseen(const std::optional<PressedPlace> &lastPress)
{
    if (const std::optional<QPoint> pressed = placeSincePress(lastPress, presentScreens())) {
        return *pressed;
    }
    const std::optional<QPoint> end = endOfMainPanel();
    return end ? *end : screenCoordinates().toDevice(MainScreen::mouseLocation());
}
