#include "menu/MenuEnabling.h"

#include "menu/MenuCommands.h"

#include <algorithm>

bool is_action(std::uint32_t code, std::span<const std::uint32_t> allowed) noexcept
{
    return std::ranges::find(allowed, code) != allowed.end();
}

bool isEnabled(std::uint32_t code, std::uint32_t flags, std::span<const std::uint32_t> allowed) noexcept
{
    switch (code) {
    case kMenuCmdServerPrefs:
    case kMenuCmdAbout:
    case kMenuCmdSupport:
        return true;
    case kMenuCmdWorkspace:
    case kMenuCmdResolution:
        return flags & kMenuFlagActive;
    default:
        return is_action(code, allowed);
    }
}
