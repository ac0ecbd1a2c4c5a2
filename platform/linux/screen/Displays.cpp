#include "platform/linux/include/MainDisplay.h"
#include "platform/linux/include/XConnection.h"

#include <Carbon/CoreGraphics.h>

#include <algorithm>
#include <array>
#include <span>
#include <utility>
#include <vector>

struct CGDisplayMode {
    std::size_t width;
    std::size_t height;
};

namespace
{
std::optional<MainDisplay> displayOf(CGDirectDisplayID id)
{
    std::optional<MainDisplay> display = mainDisplay();
    return display && display->output == id ? display : std::nullopt;
}

bool usableForDesktop(const xcb_randr_mode_info_t &mode)
{
    return !(mode.mode_flags & (XCB_RANDR_MODE_FLAG_INTERLACE | XCB_RANDR_MODE_FLAG_DOUBLE_SCAN));
}

CFNumberRef newNumber(std::int32_t value)
{
    return CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &value);
}

CFDictionaryRef newModeDictionary(const xcb_randr_mode_info_t &mode)
{
    std::array<const void *, 3> keys{CFSTR("Width"), CFSTR("Height"), CFSTR("UsableForDesktopGUI")};
    std::array<const void *, 3> values{newNumber(mode.width), newNumber(mode.height),
                                       newNumber(usableForDesktop(mode))};
    const CFDictionaryRef dictionary =
        CFDictionaryCreate(kCFAllocatorDefault, keys.data(), values.data(), keys.size(), &kCFTypeDictionaryKeyCallBacks,
                           &kCFTypeDictionaryValueCallBacks);
    std::ranges::for_each(values, CFRelease);
    return dictionary;
}

/// The modes of an output, in the server's order.
std::vector<xcb_randr_mode_info_t> modesOf(xcb_randr_output_t output)
{
    xcb_connection_t *x = XConnection::get();
    const XcbReply<xcb_randr_get_screen_resources_current_reply_t> resources(
        xcb_randr_get_screen_resources_current_reply(
            x, xcb_randr_get_screen_resources_current(x, XConnection::screen()->root), nullptr));
    if (!resources) {
        return {};
    }
    const XcbReply<xcb_randr_get_output_info_reply_t> info(
        xcb_randr_get_output_info_reply(x, xcb_randr_get_output_info(x, output, resources->config_timestamp), nullptr));
    if (!info) {
        return {};
    }
    const std::span known(
        xcb_randr_get_screen_resources_current_modes(resources.get()),
        static_cast<std::size_t>(xcb_randr_get_screen_resources_current_modes_length(resources.get())));
    const std::span listed(xcb_randr_get_output_info_modes(info.get()),
                           static_cast<std::size_t>(xcb_randr_get_output_info_modes_length(info.get())));
    std::vector<xcb_randr_mode_info_t> modes;
    for (const xcb_randr_mode_t id : listed) {
        const auto mode = std::ranges::find(known, id, &xcb_randr_mode_info_t::id);
        if (mode != known.end()) {
            modes.push_back(*mode);
        }
    }
    return modes;
}
} // namespace

CGDirectDisplayID CGMainDisplayID()
{
    const std::optional<MainDisplay> display = mainDisplay();
    return display ? display->output : kCGNullDirectDisplay;
}

CGRect CGDisplayBounds(CGDirectDisplayID id)
{
    const std::optional<MainDisplay> display = displayOf(id);
    if (!display) {
        return {};
    }
    const QRect &bounds = display->bounds;
    return {{static_cast<CGFloat>(bounds.x()), static_cast<CGFloat>(bounds.y())},
            {static_cast<CGFloat>(bounds.width()), static_cast<CGFloat>(bounds.height())}};
}

CFArrayRef CGDisplayAvailableModes(CGDirectDisplayID id)
{
    // The array stays ours until somebody asks again. The last one is never given up: constant strings, its keys, may
    // be gone by the time at which the process gives statics up.
    static CFArrayRef kept = nullptr;

    CFRelease(std::exchange(kept, nullptr));
    const std::optional<MainDisplay> display = displayOf(id);
    if (!display || display->output == XCB_NONE) {
        return nullptr;
    }
    std::vector<const void *> dictionaries;
    for (const xcb_randr_mode_info_t &mode : modesOf(id)) {
        dictionaries.push_back(newModeDictionary(mode));
    }
    kept = CFArrayCreate(kCFAllocatorDefault, dictionaries.data(), static_cast<CFIndex>(dictionaries.size()),
                         &kCFTypeArrayCallBacks);
    std::ranges::for_each(dictionaries, CFRelease);
    return kept;
}

CGDisplayModeRef CGDisplayCopyDisplayMode(CGDirectDisplayID id)
{
    // The CRTC's size, not its mode's: a turned display swaps the two.
    const std::optional<MainDisplay> display = displayOf(id);
    return display ? new CGDisplayMode{static_cast<std::size_t>(display->bounds.width()),
                                       static_cast<std::size_t>(display->bounds.height())}
                   : nullptr;
}

std::size_t CGDisplayModeGetWidth(CGDisplayModeRef mode)
{
    return mode ? mode->width : 0;
}

std::size_t CGDisplayModeGetHeight(CGDisplayModeRef mode)
{
    return mode ? mode->height : 0;
}

void CGDisplayModeRelease(CGDisplayModeRef mode)
{
    delete mode;
}
