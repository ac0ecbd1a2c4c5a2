#include "tools/kivservice/ModeTiming.h"

#include <algorithm>
#include <cmath>

xcb_randr_mode_info_t reducedBlankingMode(DisplaySize size)
{
    constexpr double refreshRate = 60;          // hertz
    constexpr double minVerticalBlank = 460e-6; // seconds
    constexpr int horizontalFrontPorch = 48;    // pixels, as the next two
    constexpr int horizontalSync = 32;
    constexpr int horizontalBlank = 160;
    constexpr int verticalFrontPorch = 3; // lines, as the next two
    constexpr int minVerticalBackPorch = 6;
    constexpr int verticalSync = 10; // the value for a size of no standard aspect ratio

    const double lineTime = (1 / refreshRate - minVerticalBlank) / size.height;
    const int verticalBlank = std::max(static_cast<int>(minVerticalBlank / lineTime) + 1,
                                       verticalFrontPorch + verticalSync + minVerticalBackPorch);
    const auto total = [](int visible, int blank) {
        return static_cast<std::uint16_t>(std::min(visible + blank, 65535));
    };

    xcb_randr_mode_info_t mode{};
    mode.width = size.width;
    mode.height = size.height;
    mode.hsync_start = total(size.width, horizontalFrontPorch);
    mode.hsync_end = total(size.width, horizontalFrontPorch + horizontalSync);
    mode.htotal = total(size.width, horizontalBlank);
    mode.vsync_start = total(size.height, verticalFrontPorch);
    mode.vsync_end = total(size.height, verticalFrontPorch + verticalSync);
    mode.vtotal = total(size.height, verticalBlank);
    mode.dot_clock = static_cast<std::uint32_t>(std::min(refreshRate * mode.htotal * mode.vtotal, 4294967295.0));
    mode.mode_flags = XCB_RANDR_MODE_FLAG_HSYNC_POSITIVE | XCB_RANDR_MODE_FLAG_VSYNC_NEGATIVE;
    return mode;
}
