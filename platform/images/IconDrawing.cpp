#include "platform/images/IconDrawing.h"

#include <QPainter>

#include <algorithm>

namespace
{
constexpr double fadedOpacity = 0.5;
}

int drawnSide(int side, const QList<QSize> &available)
{
    int best = 0;
    for (const QSize &size : available) {
        if (size.width() <= side) {
            best = std::max(best, size.width());
        }
    }
    return best * 8 >= side * 7 ? best : side;
}

QImage drawIcon(const QIcon &icon, int side, IconLook look)
{
    QImage canvas(side, side, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    const int drawn = drawnSide(side, icon.availableSizes());
    const QImage image = icon.pixmap(QSize(drawn, drawn), 1.0).toImage();
    if (image.isNull()) {
        return canvas;
    }
    // QIcon makes no picture larger than its largest page.
    const QSize fitted = image.size().scaled(drawn, drawn, Qt::KeepAspectRatio);
    QPainter painter(&canvas);
    painter.setOpacity(look == IconLook::Faded ? fadedOpacity : 1.0);
    painter.drawImage(QPoint((side - fitted.width()) / 2, (side - fitted.height()) / 2),
                      fitted == image.size() ? image
                                             : image.scaled(fitted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    return canvas;
}

QIcon iconWithLook(const QIcon &icon, IconLook look)
{
    if (look == IconLook::Normal) {
        return icon;
    }
    QIcon faded;
    for (const QSize &size : icon.availableSizes()) {
        faded.addPixmap(QPixmap::fromImage(drawIcon(icon, size.width(), look)));
    }
    return faded;
}
