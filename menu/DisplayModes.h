#pragma once

#include "menu/KIVDspRes.h"

#include <Carbon/Carbon.h>

#include <vector>

/// The number under `key`; 0 when there is none. Numbers and booleans are read.
[[nodiscard]] std::int32_t get_int(CFDictionaryRef dictionary, CFStringRef key);

/// The sizes in a list of mode dictionaries ("UsableForDesktopGUI", "Width", "Height"): each usable size of at least 2
/// x 2 pixels once, widest first. Equal widths stay in the list's order, whatever their heights.
[[nodiscard]] std::vector<KIVDspRes> displaySizes(CFArrayRef modes);
