#include "tests/platform/macos/FakeCoreGraphics.h"

#include "tests/platform/macos/FakeCoreFoundation.h"

#include <new>
#include <utility>

FakeCoreGraphics &FakeCoreGraphics::instance()
{
    static FakeCoreGraphics fake;
    return fake;
}

namespace
{
FakeCoreGraphics &fake()
{
    return FakeCoreGraphics::instance();
}
} // namespace

extern "C" {

const CFStringRef kCGDisplayShowDuplicateLowResolutionModes = CFSTR("duplicates");

CGDirectDisplayID CGMainDisplayID()
{
    return FakeCoreGraphics::display;
}

CGRect CGDisplayBounds(CGDirectDisplayID display)
{
    return display == FakeCoreGraphics::display ? fake().bounds : CGRect{};
}

CGEventRef CGEventCreate(CGEventSourceRef)
{
    const int event = 0;
    return fake().mouse ? reinterpret_cast<CGEventRef>(const_cast<void *>(
                              static_cast<const void *>(CFNumberCreate(nullptr, kCFNumberSInt32Type, &event))))
                        : nullptr;
}

CGPoint CGEventGetLocation(CGEventRef)
{
    return *fake().mouse;
}

CFArrayRef CGDisplayCopyAllDisplayModes(CGDirectDisplayID display, CFDictionaryRef options)
{
    if (fake().throwsWhenAskedForModes) {
        throw std::bad_alloc();
    }
    if (display != FakeCoreGraphics::display || !fake().tellsModes) {
        return nullptr;
    }
    std::vector<const void *> modes;
    for (const CGDisplayMode &mode : fake().modes) {
        modes.push_back(&mode);
    }
    if (options && CFDictionaryGetValue(options, kCGDisplayShowDuplicateLowResolutionModes) == kCFBooleanTrue) {
        for (const CGDisplayMode &mode : fake().lowResolutionModes) {
            modes.push_back(&mode);
        }
    }
    return FakeCoreFoundation::newArray(modes);
}

CGDisplayModeRef CGDisplayCopyDisplayMode(CGDirectDisplayID display)
{
    if (display != FakeCoreGraphics::display || !fake().present) {
        return nullptr;
    }
    ++fake().retainedModes;
    return &*fake().present;
}

std::size_t CGDisplayModeGetWidth(CGDisplayModeRef mode)
{
    return mode->width;
}

std::size_t CGDisplayModeGetHeight(CGDisplayModeRef mode)
{
    return mode->height;
}

bool CGDisplayModeIsUsableForDesktopGUI(CGDisplayModeRef mode)
{
    return mode->isUsable;
}

void CGDisplayModeRelease(CGDisplayModeRef)
{
    --fake().retainedModes;
}

CFDictionaryRef CGSessionCopyCurrentDictionary()
{
    return std::exchange(fake().session, nullptr);
}

} // extern "C"
