#include "notify/popup/KivNotificationView.h"

#include "notify/popup/RoundedRegion.h"

#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>

namespace
{

constexpr int radius = 6;
constexpr int inset = KivNotificationView::inset;

QPainterPath rounded(const QRectF &frame, qreal distance)
{
    QPainterPath path;
    const qreal cornerRadius = radius + inset - distance;
    path.addRoundedRect(frame.adjusted(distance, distance, -distance, -distance), cornerRadius, cornerRadius);
    return path;
}

} // namespace

KivNotificationView::KivNotificationView(QWidget *parent)
    : QWidget(parent)
{
}

QRegion KivNotificationView::mask() const
{
    const int distance = isTranslucent() ? 0 : inset;
    return roundedRegion(rect().adjusted(distance, distance, -distance, -distance), radius + inset - distance);
}

void KivNotificationView::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isTranslucent()) {
        // Each ring darkens what lies inside it as well, so that the shadow grows towards the rectangle.
        constexpr QColor ring(0, 0, 0, 22);
        for (const qreal distance : {0.5, 1.25, 2.0, 2.5}) {
            painter.fillPath(rounded(rect(), distance), ring);
        }
    }
    const QPainterPath shape = rounded(rect(), inset);
    painter.setClipRect(event->rect());
    painter.fillPath(shape, palette().color(QPalette::Window));

    // A hairline, for where the window's colour is also that of what it lies on.
    QColor edge = palette().color(QPalette::WindowText);
    edge.setAlphaF(0.25);
    painter.setPen(QPen(edge, 1));
    painter.drawPath(rounded(rect(), inset + 0.5));
}

bool KivNotificationView::isTranslucent() const
{
    return window()->testAttribute(Qt::WA_TranslucentBackground);
}
