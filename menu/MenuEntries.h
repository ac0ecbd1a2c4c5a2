#pragma once

#include "menu/MenuCommands.h"

#include <QString>

#include <span>

/// When an entry can be chosen.
enum class Choosable {
    Always,      ///< What the agent does by itself.
    WhileActive, ///< Under the service's flag kMenuFlagActive.
    WhenAllowed, ///< When its code is in the service's list of allowed commands; never before there is one.
};

/// One entry of the status menu.
struct MenuEntry {
    MenuCode code;
    MenuCode parent; ///< kMenuCmdNone at the top level.
    const char16_t *title;
    bool separatorBefore;
    Choosable choosable;
};

/// The whole menu, top to bottom, every parent before its children.
[[nodiscard]] std::span<const MenuEntry> menuEntries() noexcept;

/// The entry with this code; null when the menu has none.
[[nodiscard]] const MenuEntry *menuEntry(std::uint32_t code) noexcept;

/// The title of the entry with this code; a null string when the menu has none.
[[nodiscard]] QString menuEntryTitle(std::uint32_t code);
