#include "menu/DisplayModes.h"

#include <algorithm>
#include <set>

namespace
{
constexpr std::int32_t minSide = 2; // pixels

QString titleOf(std::int32_t width, std::int32_t height)
{
    return QStringLiteral("%1 x %2").arg(width).arg(height);
}
} // namespace

std::int32_t get_int(CFDictionaryRef dictionary, CFStringRef key)
{
    const void *value = CFDictionaryGetValue(dictionary, key);
    if (!value) {
        return 0;
    }
    // The system documents the usable flag as a boolean, and has been seen to give a number.
    if (CFGetTypeID(value) == CFBooleanGetTypeID()) {
        return CFBooleanGetValue(static_cast<CFBooleanRef>(value));
    }
    std::int32_t number = 0;
    if (CFGetTypeID(value) == CFNumberGetTypeID()) {
        CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt32Type, &number);
    }
    return number;
}

std::vector<KIVDspRes> displaySizes(CFArrayRef modes)
{
    std::vector<KIVDspRes> sizes;
    std::set<std::pair<std::int32_t, std::int32_t>> known;
    for (CFIndex i = 0; i < CFArrayGetCount(modes); ++i) {
        const auto mode = static_cast<CFDictionaryRef>(CFArrayGetValueAtIndex(modes, i));
        if (!mode || get_int(mode, CFSTR("UsableForDesktopGUI")) == 0) {
            continue;
        }
        const std::int32_t width = get_int(mode, CFSTR("Width"));
        const std::int32_t height = get_int(mode, CFSTR("Height"));
        // Modes of one size differ in what nobody chooses here, such as the refresh rate: the first one stands for all.
        if (width >= minSide && height >= minSide && known.emplace(width, height).second) {
            sizes.emplace_back(titleOf(width, height), width, height);
        }
    }
    std::ranges::stable_sort(sizes, std::ranges::greater{}, &KIVDspRes::width);
    return sizes;
}
