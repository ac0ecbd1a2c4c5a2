#pragma once

#include "platform/Geometry.h"
#include "platform/ScreenCoordinates.h"

#include <QPoint>
#include <QRect>

#include <optional>

/// The main screen in the agent's own coordinates (platform/Geometry.h), and the one place that converts to Qt's.
/// Everything is asked of the window system at each call, unless it is held: QScreen lags one event loop iteration
/// behind a size switched by another process. Main thread only.
namespace MainScreen
{

/// The main screen's frame; its origin is (0, 0). Nothing when no display is connected.
[[nodiscard]] std::optional<NSRect> frame();

/// Where the mouse is, on whichever screen.
[[nodiscard]] NSPoint mouseLocation();

/// How the coordinates meet on the main screen.
[[nodiscard]] ScreenCoordinates coordinates();

/// The same point in Qt's global coordinates (device-independent pixels, top-left origin).
[[nodiscard]] QPoint toQt(NSPoint point);

/// A rectangle of Qt's global coordinates in the agent's own.
[[nodiscard]] NSRect fromQt(const QRect &rect);

/// While one exists, the functions above answer with the screen as it was when the first one was made. This saves two
/// round trips to the X server at each call, and all steps of a piece of work see the same screen. Destroy it before
/// the event loop goes on, and before another program is waited for: either may change the screen.
class Held final
{
public:
    Held();
    ~Held();
    Held(const Held &) = delete;
    Held &operator=(const Held &) = delete;
};

/// The screen as the window system has it now, held or not. The size is empty when no display is connected.
[[nodiscard]] ScreenCoordinates askWindowSystem();

} // namespace MainScreen
