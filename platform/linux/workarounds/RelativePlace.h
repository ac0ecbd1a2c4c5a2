#pragma once

#include <QByteArray>
#include <QPoint>

#include <functional>

/// Whether the place at which a StatusNotifierItem host says that the item was pressed may be one within the item.
/// `program` tells the name of the host's program; it is asked only where the place may be one. Reentrant.
///
/// Symptom: each press is told with its place in the item, and not with that on the screen, so that the menu opens in
///   the screen's upper left corner.
/// Of: waybar 0.9.17, which is in Debian 12; 0.12 tells the place on the screen. No report looked for.
/// Left out: the menu opens at the other end of the screen.
/// Still needed? As long as there is Debian 12: `./kiv desktops --debian 12 sway` tells.
///
/// Who has waybar's tray begin in that corner gets a wrong answer, by any version.
[[nodiscard]] inline bool mayBeWithinTheItem(QPoint place, const std::function<QByteArray()> &program)
{
    constexpr int maxItem = 64; // In pixels, with what is around its picture.
    return place.x() < maxItem && place.y() < maxItem && program() == "waybar";
}
