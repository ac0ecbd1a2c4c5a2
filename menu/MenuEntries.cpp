#include "menu/MenuEntries.h"

#include "menu/ProductTexts.h"

#include <algorithm>

namespace
{
constexpr MenuCode topLevel = kMenuCmdNone;
using enum Choosable;

constexpr MenuEntry entries[] = {
    {kMenuCmdResolution, topLevel, u"Switch Resolution", false, WhileActive},
    {kMenuCmdNone, kMenuCmdResolution, u"Not available", false, WhenAllowed},
    {kMenuCmdWorkspace, topLevel, u"Manage Workspace", false, WhileActive},
    {kMenuCmdMinimize, kMenuCmdWorkspace, u"Minimize", false, WhenAllowed},
    {kMenuCmdMaximize, kMenuCmdWorkspace, u"Maximize", false, WhenAllowed},
    {kMenuCmdRestore, kMenuCmdWorkspace, u"Restore", false, WhenAllowed},
    {kMenuCmdReset, kMenuCmdWorkspace, u"Reset", false, WhenAllowed},
    {kMenuCmdOptions, kMenuCmdWorkspace, u"Options", true, WhenAllowed},
    {kMenuCmdDisconnect, topLevel, u"Disconnect the Session", true, WhenAllowed},
    {kMenuCmdServerPrefs, topLevel, u"Server Preferences", true, Always},
    {kMenuCmdSupport, topLevel, u"Online Support", true, Always},
    {kMenuCmdAbout, topLevel, ProductTexts::aboutEntry, true, Always},
};
} // namespace

std::span<const MenuEntry> menuEntries() noexcept
{
    return entries;
}

const MenuEntry *menuEntry(std::uint32_t code) noexcept
{
    const auto found = std::ranges::find_if(entries, [code](const MenuEntry &entry) { return entry.code == code; });
    return found == std::end(entries) ? nullptr : found;
}

QString menuEntryTitle(std::uint32_t code)
{
    const MenuEntry *entry = menuEntry(code);
    return entry ? QString::fromUtf16(entry->title) : QString();
}
