#pragma once

#include <Carbon/Carbon.h>

#include <cstddef>
#include <optional>
#include <vector>

struct CGDisplayMode {
    std::size_t width;
    std::size_t height;
    bool isUsable = true;
};

/// One display, the main one, and the login session.
struct FakeCoreGraphics {
    static constexpr CGDirectDisplayID display = 7;

    CGRect bounds{{0, 0}, {1440, 900}};
    std::optional<CGPoint> mouse; ///< Nothing when no event can be made.
    std::vector<CGDisplayMode> modes;
    std::vector<CGDisplayMode> lowResolutionModes; ///< Told only to those who ask for them.
    std::optional<CGDisplayMode> present;
    bool tellsModes = true;
    bool throwsWhenAskedForModes = false;
    CFDictionaryRef session = nullptr; ///< The next caller's.
    int retainedModes = 0;             ///< Present modes that nobody has released.

    static FakeCoreGraphics &instance();
};
