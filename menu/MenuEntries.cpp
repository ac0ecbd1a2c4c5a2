#include "menu/MenuEntries.h"

#include "menu/ProductTexts.h"

#include <algorithm>

namespace
{
constexpr MenuCommand topLevel = kMenuCmdNone;

constexpr MenuEntry entries[] = {
    {kMenuCmdResolution, topLevel, u"Switch Resolution", false, false},
    {kMenuCmdNone, kMenuCmdResolution, u"Not available", false, false},
    {kMenuCmdWorkspace, topLevel, u"Manage Workspace", false, false},
    {kMenuCmdMinimize, kMenuCmdWorkspace, u"Minimize", false, false},
    {kMenuCmdMaximize, kMenuCmdWorkspace, u"Maximize", false, false},
    {kMenuCmdRestore, kMenuCmdWorkspace, u"Restore", false, false},
    {kMenuCmdReset, kMenuCmdWorkspace, u"Reset", false, false},
    {kMenuCmdOptions, kMenuCmdWorkspace, u"Options", true, false},
    {kMenuCmdDisconnect, topLevel, u"Disconnect the Session", true, false},
    {kMenuCmdServerPrefs, topLevel, u"Server Preferences", true, true},
    {kMenuCmdSupport, topLevel, u"Online Support", true, true},
    {kMenuCmdAbout, topLevel, ProductTexts::aboutEntry, true, true},
};
} // namespace

std::span<const MenuEntry> menuEntries() noexcept
{
    return entries;
}

QString menuEntryTitle(std::uint32_t code)
{
    const auto found = std::ranges::find_if(entries, [code](const MenuEntry &entry) { return entry.code == code; });
    return found == std::end(entries) ? QString() : QString::fromUtf16(found->title);
}
