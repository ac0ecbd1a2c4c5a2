#pragma once

#include <QRect>
#include <QRegion>

/// The pixels of `frame`, less those outside the quarter circles of that radius (pixels) at its corners; a pixel counts
/// by its middle. A radius of more than half a side counts as half of it. Painting the shape and reading its pixels
/// instead would cost 0.2 ms of the 3 ms that a pop-up has to appear.
[[nodiscard]] QRegion roundedRegion(const QRect &frame, int radius);
