#pragma once

#include "tools/kivservice/DisplayArguments.h"

#include <xcb/randr.h>

/// The timing of a new mode of that size at 60 Hz, by the formula of VESA's Coordinated Video Timings with reduced
/// blanking (version 1.1, without margins). Its ID and its name are not set.
[[nodiscard]] xcb_randr_mode_info_t reducedBlankingMode(DisplaySize size);
