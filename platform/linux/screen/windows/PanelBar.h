#pragma once

#include "platform/StatusBar.h"

#include <QRect>

/// The edge and the thickness of the status bar that a top-level window at `window` makes on `monitor` for a status
/// item at `item`, all in device pixels. A window that is long and thin is a panel, at the edge beside which it lies.
/// Any other window (one that fills the monitor, an item that stands by itself) is none: then the bar reaches from the
/// top or bottom edge, whichever is nearer, as far as `item` does, and 22 points at least. An `item` without a size
/// tells nothing: 22 points at the top. `ratio` is the number of device pixels in a point.
[[nodiscard]] StatusBar panelBar(const QRect &window, const QRect &item, const QRect &monitor, double ratio);
