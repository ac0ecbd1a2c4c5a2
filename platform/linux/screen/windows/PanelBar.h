#pragma once

#include "platform/StatusBar.h"

#include <QRect>

#include <optional>

/// Whether a top-level window at `window` is a panel of `monitor`: long, and thin.
[[nodiscard]] bool isPanel(const QRect &window, const QRect &monitor);

/// The edge and the thickness of the status bar that a top-level window at `window` makes on `monitor` for a status
/// item at `item`, all in device pixels. A panel makes it at the edge beside which it lies. Any other window (a shell's
/// that fills the monitor, an item that stands by itself) is none. Then the bar is what `workArea` leaves of the
/// monitor at an edge, if the middle of `item` lies there and it is no deeper than a panel may be; an `item` without a
/// size is a point. Else the bar reaches from the top or bottom edge, whichever is nearer, as far as `item` does, and
/// 22 points at least; for a point it is 22 points at the top. `ratio` is the number of device pixels in a point.
[[nodiscard]] StatusBar panelBar(const QRect &window, const QRect &item, const QRect &monitor,
                                 const std::optional<QRect> &workArea, double ratio);
