#pragma once

#include <QList>
#include <QPoint>
#include <QRect>

#include <optional>

/// Where the item was when it was pressed last. A StatusNotifierItem host tells it with each press, and at no other
/// time.
struct PressedPlace {
    QPoint place;         ///< In device pixels of the root window.
    QList<QRect> screens; ///< The presentScreens() of that time.
};

/// Where the screens are, the main one first. Needs X; main thread only.
[[nodiscard]] QList<QRect> presentScreens();

/// Where the item is held to be while the screens are `screens`: where it was at its last press, unless they have
/// changed since, and with them the panel. Nothing where it has not been pressed.
[[nodiscard]] std::optional<QPoint> placeSincePress(const std::optional<PressedPlace> &last,
                                                    const QList<QRect> &screens);

/// Where items are on `monitor`, by custom: at the right or lower end of the panel, which is what `workArea` leaves at
/// an edge, no deeper than a quarter of the monitor. A point in it, in device pixels; nothing where there is no panel.
[[nodiscard]] std::optional<QPoint> endOfPanel(const QRect &monitor, const std::optional<QRect> &workArea);

/// Where the item is held to be whose window nobody sees: where it was at its last press; else at the end of the main
/// screen's panel; else where the mouse is. In device pixels of the root window. Needs X; main thread only.
[[nodiscard]] QPoint placeUnseen(const std::optional<PressedPlace> &lastPress);
