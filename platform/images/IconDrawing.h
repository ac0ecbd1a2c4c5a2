#pragma once

#include <QIcon>
#include <QImage>

/// How a status item's image is drawn.
enum class IconLook {
    Normal,
    Faded ///< The item is disabled.
};

/// The size, in device pixels, at which the best of `available` (square sizes) is drawn into a square of `side`: the
/// largest that nearly fills it stays as it is, sharp, and any other is scaled to fit.
[[nodiscard]] int drawnSide(int side, const QList<QSize> &available);

/// The icon, centred on a transparent square of `side` device pixels. All transparent for a null icon.
[[nodiscard]] QImage drawIcon(const QIcon &icon, int side, IconLook look);

/// The icon in every size it has, with that look.
[[nodiscard]] QIcon iconWithLook(const QIcon &icon, IconLook look);
