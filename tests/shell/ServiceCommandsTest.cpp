#include "shell/ServiceCommands.h"

#include "shell/ProcessState.h"
#include "tests/shell/EventBuilder.h"

#include <gtest/gtest.h>

namespace
{

class SetOptions : public testing::Test
{
protected:
    SetOptions() { __menu = std::make_unique<KIVMenuObj>(); }
    ~SetOptions() override { __menu.reset(); }

    static bool isEnabled(QMenu &menu, std::uint32_t code)
    {
        for (QAction *item : menu.actions()) {
            if (!item->isSeparator() && item->data().toUInt() == code) {
                return item->isEnabled();
            }
            if (item->menu() && isEnabled(*item->menu(), code)) {
                return true;
            }
        }
        return false;
    }
    static bool isEnabled(std::uint32_t code) { return isEnabled(*__menu->menu(), code); }
    static bool isShown() { return __menu->statusItem() != nullptr; }

    /// Flags 4 let the two upper entries follow the next list; nothing else shows them.
    static bool isActive()
    {
        __menu->setActions({});
        return isEnabled(kMenuCmdWorkspace);
    }
};

} // namespace

TEST_F(SetOptions, FailsForANullEvent)
{
    EXPECT_EQ(__cmd_setopt(nullptr), -10000);
}

TEST_F(SetOptions, ChangesOnlyTheFlagsWhenThereAreOnlyFlags)
{
    __menu->setActions(std::vector<std::uint32_t>{kMenuCmdDisconnect});
    EventBuilder builder;
    EXPECT_EQ(__cmd_setopt(builder.flags(6).event()), 0);
    EXPECT_TRUE(isShown());
    EXPECT_TRUE(isEnabled(kMenuCmdDisconnect));
    EXPECT_FALSE(isEnabled(kMenuCmdWorkspace)) << "follows at the next list";
    EXPECT_TRUE(isActive());
}

TEST_F(SetOptions, ChangesOnlyTheCommandsWhenThereIsOnlyAList)
{
    __menu->setFlags(2);
    EventBuilder builder;
    EXPECT_EQ(__cmd_setopt(builder.count(2).actions({kMenuCmdMinimize, kMenuCmdRestore}).event()), 0);
    EXPECT_TRUE(isShown());
    EXPECT_TRUE(isEnabled(kMenuCmdMinimize));
    EXPECT_TRUE(isEnabled(kMenuCmdRestore));
    EXPECT_FALSE(isEnabled(kMenuCmdMaximize));
}

TEST_F(SetOptions, AppliesTheFlagsBeforeTheList)
{
    EventBuilder builder;
    EXPECT_EQ(__cmd_setopt(builder.count(1).actions({kMenuCmdMinimize}).flags(6).event()), 0);
    EXPECT_TRUE(isEnabled(kMenuCmdWorkspace));
    EXPECT_TRUE(isEnabled(kMenuCmdMinimize));
}

TEST_F(SetOptions, ChangesNothingWithoutParameters)
{
    __menu->setActions(std::vector<std::uint32_t>{kMenuCmdDisconnect});
    EventBuilder builder;
    EXPECT_EQ(__cmd_setopt(builder.event()), 0);
    EXPECT_FALSE(isShown());
    EXPECT_TRUE(isEnabled(kMenuCmdDisconnect));
}

TEST_F(SetOptions, IgnoresAListWithoutItsCount)
{
    EventBuilder builder;
    EXPECT_EQ(__cmd_setopt(builder.actions({kMenuCmdDisconnect}).event()), 0);
    EXPECT_FALSE(isEnabled(kMenuCmdDisconnect));
}

TEST_F(SetOptions, DisablesEveryListedCommandForACountOfZero)
{
    __menu->setActions(std::vector<std::uint32_t>{kMenuCmdDisconnect, kMenuCmdMinimize});
    EventBuilder builder;
    EXPECT_EQ(__cmd_setopt(builder.count(0).event()), 0);
    EXPECT_FALSE(isEnabled(kMenuCmdDisconnect));
    EXPECT_FALSE(isEnabled(kMenuCmdMinimize));
    EXPECT_TRUE(isEnabled(kMenuCmdAbout));
}

TEST_F(SetOptions, FailsForACountWithoutAListButKeepsTheFlags)
{
    __menu->setActions(std::vector<std::uint32_t>{kMenuCmdDisconnect});
    EventBuilder builder;
    EXPECT_EQ(__cmd_setopt(builder.flags(6).count(1).event()), -10000);
    EXPECT_TRUE(isEnabled(kMenuCmdDisconnect)) << "the old list stays";
    EXPECT_TRUE(isShown());
    EXPECT_TRUE(isActive());
}

TEST_F(SetOptions, FailsForAListOfAnotherType)
{
    const std::uint32_t code = kMenuCmdDisconnect;
    EventBuilder builder;
    EXPECT_EQ(__cmd_setopt(builder.count(1).put(kMenuParamActions, typeUInt32, &code, sizeof code).event()), -10000);
    EXPECT_FALSE(isEnabled(kMenuCmdDisconnect));
}

TEST_F(SetOptions, ReadsTheMissingRestOfAShortListAsZeros)
{
    // An entry that only a code of 0 enables shows what the missing codes were read as.
    __menu->addMenuItem(QStringLiteral("Zero"), {}, 0, false, false, false);
    EventBuilder exact;
    EXPECT_EQ(__cmd_setopt(exact.count(1).actions({kMenuCmdDisconnect}).event()), 0);
    EXPECT_FALSE(isEnabled(0));

    EventBuilder tooShort;
    EXPECT_EQ(__cmd_setopt(tooShort.count(3).actions({kMenuCmdDisconnect}).event()), 0);
    EXPECT_TRUE(isEnabled(kMenuCmdDisconnect));
    EXPECT_TRUE(isEnabled(0));
}

TEST_F(SetOptions, FillsAHalfCodeUpWithZeros)
{
    const unsigned char bytes[] = {0x18, 0x80, 0x00, 0x00, 0x19, 0x80}; // 32792, then the first half of 32793
    EventBuilder builder;
    EXPECT_EQ(__cmd_setopt(builder.count(2).put(kMenuParamActions, typeMenuActionList, bytes, sizeof bytes).event()),
              0);
    EXPECT_TRUE(isEnabled(kMenuCmdDisconnect));
    EXPECT_TRUE(isEnabled(kMenuCmdMinimize));
}

TEST_F(SetOptions, ReadsNoMoreCodesThanAnnounced)
{
    EventBuilder builder;
    EXPECT_EQ(__cmd_setopt(builder.count(1).actions({kMenuCmdDisconnect, kMenuCmdMinimize}).event()), 0);
    EXPECT_TRUE(isEnabled(kMenuCmdDisconnect));
    EXPECT_FALSE(isEnabled(kMenuCmdMinimize));
}

TEST_F(SetOptions, AllocatesNothingOnTheSendersWordAlone)
{
    EventBuilder withoutList;
    EXPECT_EQ(__cmd_setopt(withoutList.count(4'000'000'000).event()), -10000);

    // Sixteen gigabytes of zeros would not go unnoticed.
    EventBuilder withShortList;
    EXPECT_EQ(__cmd_setopt(withShortList.count(4'000'000'000).actions({kMenuCmdDisconnect}).event()), 0);
    EXPECT_TRUE(isEnabled(kMenuCmdDisconnect));
}
