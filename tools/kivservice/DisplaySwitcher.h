#pragma once

#include "tools/kivservice/DisplayArguments.h"

#include <QString>

/// Switches the main display of $DISPLAY to that size: to a listed mode, else to a new one, which is added and stays
/// listed. An empty string, or why the display is as it was.
[[nodiscard]] QString switchMainDisplay(DisplaySize size);
