#include "menu/MenuEnabling.h"

#include "menu/MenuCommands.h"
#include "menu/MenuEntries.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

TEST(IsAction, FindsACodeAnywhereInTheList)
{
    constexpr std::array<std::uint32_t, 3> codes{32793, 32791, 32796};
    EXPECT_TRUE(is_action(32793, codes));
    EXPECT_TRUE(is_action(32796, codes));
    EXPECT_FALSE(is_action(32794, codes));
}

TEST(IsAction, FindsNothingInAnEmptyList)
{
    EXPECT_FALSE(is_action(32793, {}));
    EXPECT_FALSE(is_action(0, {}));
}

TEST(MenuEnabling, KeepsPreferencesSupportAndAboutEnabledWhateverTheServiceSays)
{
    for (const std::uint32_t code : {32790U, 32799U, 32800U}) {
        for (const std::uint32_t flags : {0U, 2U, 4U, 6U}) {
            EXPECT_TRUE(isEnabled(code, flags, {})) << code << " with flags " << flags;
        }
    }
}

TEST(MenuEnabling, LetsResolutionAndWorkspaceFollowTheActiveFlagAlone)
{
    for (const std::uint32_t code : {32809U, 32810U}) {
        const std::vector<std::uint32_t> allowed{code};
        EXPECT_TRUE(isEnabled(code, 4, {})) << code;
        EXPECT_TRUE(isEnabled(code, 6, {})) << code;
        EXPECT_TRUE(isEnabled(code, 0xFFFFFFFF, {})) << code;
        EXPECT_FALSE(isEnabled(code, 2, allowed)) << code << ": being allowed does not count";
        EXPECT_FALSE(isEnabled(code, 0xFFFFFFFB, allowed)) << code;
    }
}

TEST(MenuEnabling, LetsEveryOtherEntryFollowTheAllowedCommands)
{
    const std::vector<std::uint32_t> allowed{32793, 32791};
    for (const MenuEntry &entry : menuEntries()) {
        switch (entry.code) {
        case kMenuCmdServerPrefs:
        case kMenuCmdAbout:
        case kMenuCmdSupport:
        case kMenuCmdResolution:
        case kMenuCmdWorkspace:
            break;
        default:
            EXPECT_EQ(isEnabled(entry.code, 6, allowed), entry.code == 32793 || entry.code == 32791) << entry.code;
            EXPECT_FALSE(isEnabled(entry.code, 6, {})) << entry.code;
        }
    }
}
