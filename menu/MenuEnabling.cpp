#include "menu/MenuEnabling.h"

#include "menu/MenuCommands.h"
#include "menu/MenuEntries.h"

#include <algorithm>

bool is_action(std::uint32_t code, std::span<const std::uint32_t> allowed) noexcept
{
    return std::ranges::find(allowed, code) != allowed.end();
}

bool isEnabled(std::uint32_t code, std::uint32_t flags, std::span<const std::uint32_t> allowed) noexcept
{
    const MenuEntry *entry = menuEntry(code);
    switch (entry ? entry->choosable : Choosable::WhenAllowed) {
    case Choosable::Always:
        return true;
    case Choosable::WhileActive:
        return flags & kMenuFlagActive;
    case Choosable::WhenAllowed:
        return is_action(code, allowed);
    }
    return false;
}
