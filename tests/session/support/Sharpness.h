#pragma once

#include <QImage>

/// What tells a picture that was drawn in the screen's pixels from one that was drawn in points, of `scale` pixels
/// each, and stretched then. The scale is a number of quarters above 1.
namespace Sharpness
{

/// The grey values between neighbours at the steepest hundredth of the picture. Where colours are mixed as a picture is
/// stretched, that becomes less.
[[nodiscard]] double steepness(const QImage &picture);

/// By how many grey values an average pixel is off once the picture has been drawn in points and stretched by repeating
/// pixels: next to nothing for one that has been stretched like this before.
[[nodiscard]] double lossInPoints(const QImage &picture, double scale);

/// True when it has the edges of `usual`, the same in a scale of 1, and more than that can show.
[[nodiscard]] bool isDrawnInPixels(const QImage &picture, const QImage &usual, double scale);

/// By how many grey values an average pixel of that drawing is off where it lies best in the picture, over one colour.
[[nodiscard]] double differenceTo(const QImage &drawing, const QImage &picture);

} // namespace Sharpness
