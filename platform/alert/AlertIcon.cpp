#include "platform/alert/AlertIcon.h"

#include <QPainter>

QPixmap alertIcon(AlertSign sign, int side, qreal devicePixelRatio)
{
    QPixmap icon(QSize(side, side) * devicePixelRatio);
    icon.setDevicePixelRatio(devicePixelRatio);
    icon.fill(Qt::transparent);

    QPainter painter(&icon);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.scale(side / 48.0, side / 48.0);
    painter.setBrush(sign == AlertSign::Critical ? QColor(0xc9, 0x30, 0x2c) : QColor(0x2a, 0x76, 0xc6));
    painter.drawEllipse(QRectF(1, 1, 46, 46));

    // An "i" and an exclamation mark are a stem and a dot, the one upside down the other.
    if (sign == AlertSign::Critical) {
        painter.translate(48, 48);
        painter.rotate(180);
    }
    painter.setBrush(Qt::white);
    painter.drawEllipse(QRectF(20.5, 9.5, 7, 7));
    painter.drawRoundedRect(QRectF(21, 20, 6, 18.5), 2, 2);
    return icon;
}
