#include "notify/popup/keyboard/FocusRing.h"

#include <QPainter>
#include <QPainterPath>

namespace
{
constexpr int ringDistance = 1;
constexpr int ringWidth = 2;
constexpr int ringMargin = ringDistance + ringWidth;
} // namespace

FocusRing::FocusRing(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void FocusRing::showAround(const QRegion &place)
{
    const QRect bounds = place.boundingRect().adjusted(-ringMargin, -ringMargin, ringMargin, ringMargin);
    m_place = place.translated(-bounds.topLeft());
    setGeometry(bounds);
    setVisible(!place.isEmpty());
    raise();
    update();
}

void FocusRing::paintEvent(QPaintEvent *)
{
    QPainterPath outline;
    for (const QRect &part : m_place) {
        constexpr qreal radius = 3;
        QPainterPath around;
        around.addRoundedRect(QRectF(part).adjusted(-ringDistance, -ringDistance, ringDistance, ringDistance), radius,
                              radius);
        outline |= around;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Highlight), ringWidth));
    painter.drawPath(outline);
}
