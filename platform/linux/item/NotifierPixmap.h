#pragma once

#include "platform/images/IconDrawing.h"

#include <QByteArray>
#include <QDBusArgument>
#include <QList>
#include <QString>

/// A picture as StatusNotifierItem hosts expect it, (iiay) on the bus: rows from the top, four bytes a pixel, alpha,
/// red, green, blue, colours not multiplied by alpha.
struct NotifierPixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes;

    bool operator==(const NotifierPixmap &) const = default;
};
using NotifierPixmaps = QList<NotifierPixmap>;

/// (sa(iiay)ss) on the bus; ours have a title and nothing else.
struct NotifierToolTip {
    QString iconName;
    NotifierPixmaps pixmaps;
    QString title;
    QString text;
};

QDBusArgument &operator<<(QDBusArgument &argument, const NotifierPixmap &pixmap);
const QDBusArgument &operator>>(const QDBusArgument &argument, NotifierPixmap &pixmap);
QDBusArgument &operator<<(QDBusArgument &argument, const NotifierToolTip &toolTip);
const QDBusArgument &operator>>(const QDBusArgument &argument, NotifierToolTip &toolTip);

[[nodiscard]] NotifierPixmap notifierPixmap(const QImage &image);

/// The icon in the sizes that hosts draw it in, at scales from 1 to 2, so that none needs to scale it. Empty for a null
/// icon.
[[nodiscard]] NotifierPixmaps notifierPixmaps(const QIcon &icon, IconLook look);
