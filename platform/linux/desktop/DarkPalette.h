#pragma once

#include <QPalette>

/// The colours of windows on a dark desktop. On a light one they are Qt's own. Reentrant.
[[nodiscard]] QPalette darkPalette();
