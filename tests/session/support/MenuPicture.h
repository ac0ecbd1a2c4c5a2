#pragma once

#include <QImage>
#include <QList>
#include <QRect>

/// What the eye finds in a picture of a menu or a panel, so that the pointer can be sent there.
namespace MenuPicture
{

/// The entries of a menu, top to bottom, by their line of text; separators are none. Each as wide as the menu.
[[nodiscard]] QList<QRect> entries(const QImage &menu);

/// The numbers of the entries that bear a check mark.
[[nodiscard]] QList<int> marked(const QImage &menu);

/// The buttons along the lower edge of a panel, left to right.
[[nodiscard]] QList<QRect> buttons(const QImage &panel);

} // namespace MenuPicture
