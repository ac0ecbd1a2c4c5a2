#pragma once

#include <QString>

/// The most that a text is measured to be high, in points.
inline constexpr float maxMeasuredHeight = 20'000;

/// The height in points that `text` takes in the system font of size 12 when its lines wrap at `width` points, between
/// words where possible; 0 for an empty text. A width that is not a positive number wraps nothing.
/// No more than maxMeasuredHeight, nor than firstScriptRuns() of the text takes: whoever sends a longer text does not
/// want it seen whole, and laying it out would stop the agent for seconds. Needs the GUI application object. Main
/// thread only.
[[nodiscard]] float textHeight(const QString &text, float width);
