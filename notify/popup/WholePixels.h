#pragma once

#include "platform/Geometry.h"

#include <QRect>

/// The pop-up's lengths in whole device-independent pixels, as Qt has them.

[[nodiscard]] int textWidth(const NSSize &contentSize);

/// A frame within a window of that size, in Qt's coordinates, which count from the top.
[[nodiscard]] QRect inWindow(const NSRect &frame, const NSSize &window);

[[nodiscard]] QSize sizeInWindows(const NSSize &size);
