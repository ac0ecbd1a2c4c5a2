#include "platform/screen/AvailableDisplayModes.h"

#include "platform/macos/CoreFoundationObject.h"

#include <array>
#include <cstdint>
#include <vector>

// The call that gave the list in this form is gone from the system. Widths and heights are points, as those of
// CGDisplayBounds are.

namespace
{

using Object = CoreFoundationObject;

struct Size2D {
    std::size_t width = 0;
    std::size_t height = 0;

    bool operator==(const Size2D &) const = default;
};

Size2D sizeOf(CGDisplayModeRef mode)
{
    return {CGDisplayModeGetWidth(mode), CGDisplayModeGetHeight(mode)};
}

template <std::size_t count>
CFDictionaryRef newDictionary(std::array<const void *, count> keys, std::array<const void *, count> values)
{
    return CFDictionaryCreate(kCFAllocatorDefault, keys.data(), values.data(), count, &kCFTypeDictionaryKeyCallBacks,
                              &kCFTypeDictionaryValueCallBacks);
}

Object number(std::size_t value)
{
    const auto narrowed = static_cast<std::int32_t>(value);
    return Object(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &narrowed));
}

Object description(Size2D size, bool isUsable)
{
    const Object width = number(size.width);
    const Object height = number(size.height);
    return Object(newDictionary<3>({CFSTR("Width"), CFSTR("Height"), CFSTR("UsableForDesktopGUI")},
                                   {width.get(), height.get(), isUsable ? kCFBooleanTrue : kCFBooleanFalse}));
}

/// All modes, those included that show the desktop larger than the display's pixels allow: without these the present
/// size of such a display would not be in the list.
Object allModes(CGDirectDisplayID display)
{
    const Object options(newDictionary<1>({kCGDisplayShowDuplicateLowResolutionModes}, {kCFBooleanTrue}));
    return Object(CGDisplayCopyAllDisplayModes(display, static_cast<CFDictionaryRef>(options.get())));
}

} // namespace

CFArrayRef availableDisplayModes(CGDirectDisplayID display)
{
    const Object modes = allModes(display);
    if (!modes) {
        return nullptr;
    }
    std::vector<Object> descriptions;
    bool hasPresent = false;
    const CGDisplayModeRef present = CGDisplayCopyDisplayMode(display);
    const auto list = static_cast<CFArrayRef>(modes.get());
    for (CFIndex i = 0; i < CFArrayGetCount(list); ++i) {
        // The list's own type has no const.
        const auto mode = static_cast<CGDisplayModeRef>(const_cast<void *>(CFArrayGetValueAtIndex(list, i)));
        const bool isUsable = CGDisplayModeIsUsableForDesktopGUI(mode);
        hasPresent = hasPresent || (present && isUsable && sizeOf(mode) == sizeOf(present));
        descriptions.push_back(description(sizeOf(mode), isUsable));
    }
    if (present) {
        // Some displays leave out the mode that they are in.
        if (!hasPresent) {
            descriptions.push_back(description(sizeOf(present), true));
        }
        CGDisplayModeRelease(present);
    }

    std::vector<const void *> values;
    values.reserve(descriptions.size());
    for (const Object &one : descriptions) {
        values.push_back(one.get());
    }
    static Object kept;
    kept = Object(
        CFArrayCreate(kCFAllocatorDefault, values.data(), static_cast<CFIndex>(values.size()), &kCFTypeArrayCallBacks));
    return static_cast<CFArrayRef>(kept.get());
}
