#pragma once

#include <QWidget>

/// The program that blends windows over each other, without which nothing in a window is translucent. Main thread only.
namespace Compositor
{

/// Whether one runs now.
[[nodiscard]] bool isRunning();

/// Tells it that the window, which has been created, paints its own shadow, `extent` device-independent pixels wide on
/// every side, and needs no other.
void announceShadow(QWidget &window, int extent);

} // namespace Compositor
