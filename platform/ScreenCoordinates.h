#pragma once

#include "platform/Geometry.h"

#include <QList>
#include <QPoint>
#include <QRect>

/// The three coordinate systems that meet on a screen, and the arithmetic between them:
///  - points: the agent's own (platform/Geometry.h), from the main screen's bottom-left corner;
///  - device pixels: the window system's, one space for all screens, from the top left;
///  - Qt's global coordinates: device-independent pixels from the top left. Qt keeps the top-left corner of a screen
///    where it is in device pixels and scales what lies inside it.
///
/// One point is one device-independent pixel: on a 2560 x 1600 main screen with ratio 2 the frame is 1280 x 800 points.
/// Points off the main screen are counted on in the main screen's scale.
struct ScreenCoordinates {
    QRect mainScreen; ///< In device pixels; empty when there is no main screen, whose corner is then (0, 0).
    double ratio = 1; ///< Device pixels per point, above 0: of all screens.
    /// In device pixels, as Qt scales what lies inside them. None with ratio 1, where Qt's pixels are the device's;
    /// what is on none of them counts as if it were on the main screen.
    QList<QRect> otherScreens = {};

    [[nodiscard]] NSRect frame() const;
    [[nodiscard]] NSPoint fromDevice(QPoint point) const;
    [[nodiscard]] NSRect fromDevice(const QRect &rect) const;
    [[nodiscard]] QPoint toDevice(NSPoint point) const;
    [[nodiscard]] QRect toDevice(NSRect rect) const;
    [[nodiscard]] NSRect fromQt(const QRect &rect) const;
    [[nodiscard]] QPoint toQt(NSPoint point) const;

private:
    [[nodiscard]] NSRect fromQtOnMainScreen(const QRect &rect) const;
    [[nodiscard]] QPoint toQtOnMainScreen(NSPoint point) const;
};
