#include "platform/linux/item/NotifierPixmap.h"

#include <QtEndian>

QDBusArgument &operator<<(QDBusArgument &argument, const NotifierPixmap &pixmap)
{
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, NotifierPixmap &pixmap)
{
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const NotifierToolTip &toolTip)
{
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.pixmaps << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, NotifierToolTip &toolTip)
{
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.pixmaps >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

NotifierPixmap notifierPixmap(const QImage &image)
{
    const QImage pixels = image.convertToFormat(QImage::Format_ARGB32);
    NotifierPixmap result{pixels.width(), pixels.height(), {}};
    result.bytes.reserve(pixels.sizeInBytes());
    for (int y = 0; y < pixels.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(pixels.constScanLine(y));
        for (int x = 0; x < pixels.width(); ++x) {
            const QRgb inNetworkOrder = qToBigEndian(line[x]);
            result.bytes.append(reinterpret_cast<const char *>(&inNetworkOrder), sizeof inNetworkOrder);
        }
    }
    return result;
}

NotifierPixmaps notifierPixmaps(const QIcon &icon, IconLook look)
{
    NotifierPixmaps pixmaps;
    if (!icon.isNull()) {
        for (const int side : {16, 22, 24, 32, 44, 48}) {
            pixmaps.append(notifierPixmap(drawIcon(icon, side, look)));
        }
    }
    return pixmaps;
}
