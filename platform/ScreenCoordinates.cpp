#include "platform/ScreenCoordinates.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <cmath>

namespace
{

// An empty QRect lies at (0, 0) with size (0, 0), as the main screen does where there is none.
double scaledHeight(const ScreenCoordinates &screen)
{
    return screen.mainScreen.height() / screen.ratio;
}

NSRect makeRect(double x, double y, QSizeF size)
{
    return {{static_cast<float>(x), static_cast<float>(y)},
            {static_cast<float>(size.width()), static_cast<float>(size.height())}};
}

} // namespace

NSRect ScreenCoordinates::frame() const
{
    return makeRect(0, 0, QSizeF(mainScreen.size()) / ratio);
}

NSPoint ScreenCoordinates::fromDevice(QPoint point) const
{
    return {static_cast<float>((point.x() - mainScreen.x()) / ratio),
            static_cast<float>((mainScreen.y() + mainScreen.height() - point.y()) / ratio)};
}

NSRect ScreenCoordinates::fromDevice(const QRect &rect) const
{
    const NSPoint bottomLeft = fromDevice(QPoint(rect.x(), rect.y() + rect.height()));
    return makeRect(bottomLeft.x, bottomLeft.y, QSizeF(rect.size()) / ratio);
}

QPoint ScreenCoordinates::toDevice(NSPoint point) const
{
    return {static_cast<int>(std::lround(mainScreen.x() + point.x * ratio)),
            static_cast<int>(std::lround(mainScreen.y() + mainScreen.height() - point.y * ratio))};
}

QRect ScreenCoordinates::toDevice(NSRect rect) const
{
    const QPoint topLeft = toDevice(NSPoint{rect.origin.x, rect.origin.y + rect.size.height});
    const QPoint bottomRight = toDevice(NSPoint{rect.origin.x + rect.size.width, rect.origin.y});
    return {topLeft, QSize(bottomRight.x() - topLeft.x(), bottomRight.y() - topLeft.y())};
}

NSRect ScreenCoordinates::fromQtOnMainScreen(const QRect &rect) const
{
    const double bottom = rect.y() + rect.height() - mainScreen.y();
    return makeRect(rect.x() - mainScreen.x(), scaledHeight(*this) - bottom, rect.size());
}

QPoint ScreenCoordinates::toQtOnMainScreen(NSPoint point) const
{
    return {static_cast<int>(std::lround(mainScreen.x() + point.x)),
            static_cast<int>(std::lround(mainScreen.y() + scaledHeight(*this) - point.y))};
}

NSRect ScreenCoordinates::fromQt(const QRect &rect) const
{
    for (const QRect &screen : otherScreens) {
        const QPointF offset = rect.center() - screen.topLeft();
        if (QRectF(QPointF(), QSizeF(screen.size()) / ratio).contains(offset)) {
            const QPointF corner = screen.topLeft() + QPointF(rect.topLeft() - screen.topLeft()) * ratio;
            const double top = (mainScreen.y() + mainScreen.height() - corner.y()) / ratio;
            return makeRect((corner.x() - mainScreen.x()) / ratio, top - rect.height(), rect.size());
        }
    }
    return fromQtOnMainScreen(rect);
}

QPoint ScreenCoordinates::toQt(NSPoint point) const
{
    for (const QRect &screen : otherScreens) {
        if (screen.contains(toDevice(point))) {
            const QPointF device(mainScreen.x() + point.x * ratio,
                                 mainScreen.y() + mainScreen.height() - point.y * ratio);
            return screen.topLeft() + ((device - screen.topLeft()) / ratio).toPoint();
        }
    }
    return toQtOnMainScreen(point);
}
