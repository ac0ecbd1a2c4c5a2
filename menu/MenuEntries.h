#pragma once

#include "menu/MenuCommands.h"

#include <QString>

#include <span>

/// One entry of the status menu as it is built, before the service has said anything.
struct MenuEntry {
    MenuCommand code;
    MenuCommand parent; ///< kMenuCmdNone at the top level.
    const char16_t *title;
    bool separatorBefore;
    bool enabled;
};

/// The whole menu, top to bottom, every parent before its children.
[[nodiscard]] std::span<const MenuEntry> menuEntries() noexcept;

/// The title of the entry with this code; a null string when the menu has none.
[[nodiscard]] QString menuEntryTitle(std::uint32_t code);
