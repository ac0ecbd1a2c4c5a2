#pragma once

#include "platform/StatusBar.h"

#include <QRect>

/// The status bar that a top-level window at `window` makes on the main screen `screen`, both in device pixels: a
/// horizontal panel at the screen's top or bottom edge, on this screen or one beside it that ends at the same height.
/// Any other window (a vertical panel, a window that fills the screen) gives 22 points at the top. `ratio` is the
/// number of device pixels in a point.
[[nodiscard]] StatusBar panelBar(const QRect &window, const QRect &screen, double ratio);
