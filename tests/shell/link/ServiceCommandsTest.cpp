#include "shell/link/ServiceCommands.h"

#include "notify/popup/KivNotificationWindow.h"
#include "notify/queue/KivNotificationManager.h"
#include "notify/record/KivNotification.h"
#include "shell/ProcessState.h"
#include "tests/shell/link/EventBuilder.h"
#include "tests/support/LogLines.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

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

/// The shared manager, in a home of the test's own.
class DoHint : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        static const QTemporaryDir home; // The manager keeps its path.
        qputenv("HOME", home.path().toLocal8Bit());
    }

    ~DoHint() override
    {
        // Each close brings the next one up.
        while (KivNotificationWindow *window = manager().notificationWindow()) {
            window->onDontRemindMeButton();
        }
    }

    static KivNotificationManager &manager() { return KivNotificationManager::sharedInstance(); }

    static OSErr send(const QByteArray &text, std::optional<std::uint32_t> length = {})
    {
        const std::uint32_t size = length.value_or(static_cast<std::uint32_t>(text.size()));
        EventBuilder builder;
        builder.put(kMenuParamHintSize, typeUInt32, &size, sizeof size)
            .put(kMenuParamHintText, typeMenuHintText, text.constData(), static_cast<std::size_t>(text.size()));
        return __cmd_dohint(builder.event());
    }

    /// The record of the pop-up that is open; null when none is.
    static std::shared_ptr<KivNotification> shown()
    {
        const KivNotificationWindow *window = manager().notificationWindow();
        return window ? window->notification() : nullptr;
    }
    static std::string shownText() { return shown() ? shown()->messageText().toStdString() : "nothing is shown"; }
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

TEST_F(SetOptions, SaysWhatAnEventChangesAndWhatItDoesNot)
{
    using testing::Contains;
    LogLines log;
    const auto linesFor = [&log](const AppleEvent *event) {
        static_cast<void>(__cmd_setopt(event));
        return log.take();
    };
    EXPECT_THAT(linesFor(EventBuilder().event()), Contains("kiv.link: neither flags nor commands"));
    EXPECT_THAT(linesFor(EventBuilder().actions({kMenuCmdDisconnect}).event()),
                Contains("kiv.link: neither flags nor commands"));
    const std::vector<std::string> flagsOnly = linesFor(EventBuilder().flags(0).event());
    EXPECT_THAT(flagsOnly, Contains("kiv.link: flags 0"));
    EXPECT_THAT(flagsOnly, Contains("kiv.link: the commands stay as they are: no count of them"));
    EXPECT_THAT(linesFor(EventBuilder().count(0).event()), Contains("kiv.link: no command is allowed"));
    EXPECT_THAT(linesFor(EventBuilder().count(7).event()),
                Contains("kiv.link: 7 commands are announced, and there is no list of them"));
    EXPECT_THAT(linesFor(EventBuilder().count(1).actions({kMenuCmdDisconnect}).event()),
                Contains("kiv.link: commands allowed: QList(32792)"));
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

TEST_F(DoHint, FailsForANullEvent)
{
    EXPECT_EQ(__cmd_dohint(nullptr), -10000);
}

TEST_F(DoHint, ShowsItsTextAtOnceAsAnInstantMessageOfOneSize)
{
    for (const QByteArray &text : {QByteArray("Gr\xC3\xBC\xC3\x9F Gott"), QByteArray(3000, 'w')}) {
        EXPECT_EQ(send(text), 0);
        ASSERT_TRUE(shown());
        EXPECT_EQ(shownText(), text.toStdString());
        EXPECT_EQ(shown()->contentWidth(), 370.0F);
        EXPECT_EQ(shown()->contentHeight(), 55.0F);
        EXPECT_EQ(shown()->messagePriority(), 3);
        EXPECT_EQ(shown()->messageType(), 1);
        EXPECT_EQ(shown()->messageId(), QStringLiteral(""));
        manager().notificationWindow()->onCloseButton();
        EXPECT_FALSE(shown());
    }
}

TEST_F(DoHint, ShowsNothingWithoutALengthOrWithALengthOfZero)
{
    EventBuilder withoutLength;
    EXPECT_EQ(__cmd_dohint(withoutLength.put(kMenuParamHintText, typeMenuHintText, "text", 4).event()), 0);
    EXPECT_EQ(send("text", 0), 0);
    EventBuilder ofAnotherType;
    const std::int32_t length = 4;
    EXPECT_EQ(__cmd_dohint(ofAnotherType.put(kMenuParamHintSize, typeSInt32, &length, sizeof length)
                               .put(kMenuParamHintText, typeMenuHintText, "text", 4)
                               .event()),
              0);
    EXPECT_FALSE(shown());
}

TEST_F(DoHint, SaysWhyNothingIsShown)
{
    LogLines log;
    EventBuilder withoutLength;
    EXPECT_EQ(__cmd_dohint(withoutLength.put(kMenuParamHintText, typeMenuHintText, "text", 4).event()), 0);
    EXPECT_THAT(log.take(), testing::Contains("kiv.link: a hint without a length is not shown"));
    const std::uint32_t length = 4;
    EventBuilder withoutText;
    EXPECT_EQ(__cmd_dohint(withoutText.put(kMenuParamHintSize, typeUInt32, &length, sizeof length).event()), -10000);
    EXPECT_THAT(log.take(), testing::Contains("kiv.link: a hint is announced, and there is no text"));
}

TEST_F(DoHint, FailsWhenTheTextIsMissingOrOfAnotherType)
{
    const std::uint32_t length = 4;
    EventBuilder withoutText;
    EXPECT_EQ(__cmd_dohint(withoutText.put(kMenuParamHintSize, typeUInt32, &length, sizeof length).event()), -10000);
    EventBuilder ofAnotherType;
    EXPECT_EQ(__cmd_dohint(ofAnotherType.put(kMenuParamHintSize, typeUInt32, &length, sizeof length)
                               .put(kMenuParamHintText, typeMenuActionList, "text", 4)
                               .event()),
              -10000);
    EXPECT_FALSE(shown());
}

TEST_F(DoHint, EndsTheTextAtAZeroByteAndAtTheAnnouncedLength)
{
    EXPECT_EQ(send(QByteArray("seen\0unseen", 11)), 0);
    EXPECT_EQ(shownText(), "seen");
    manager().notificationWindow()->onCloseButton();
    EXPECT_EQ(send("only this", 4), 0);
    EXPECT_EQ(shownText(), "only");
    manager().notificationWindow()->onCloseButton();
    EXPECT_EQ(send(QByteArray("\0unseen", 7)), 0);
    EXPECT_EQ(shownText(), "");
    EXPECT_FALSE(shown()->messageText().isNull());
}

TEST_F(DoHint, ShowsAMessageWithoutTextForBytesThatAreNotUtf8)
{
    EXPECT_EQ(send("\xFF\xFE"), 0);
    ASSERT_TRUE(shown());
    EXPECT_TRUE(shown()->messageText().isNull());
    EXPECT_EQ(shown()->contentHeight(), 55.0F);
}

TEST_F(DoHint, AllocatesNothingOnTheSendersWordAlone)
{
    EXPECT_EQ(send("short", 4'294'967'295), 0);
    EXPECT_EQ(shownText(), "short");
}

TEST_F(DoHint, WaitsForThePopUpThatIsOpen)
{
    EXPECT_EQ(send("first"), 0);
    EXPECT_EQ(send("second"), 0);
    EXPECT_EQ(shownText(), "first");
    manager().notificationWindow()->onCloseButton();
    EXPECT_EQ(shownText(), "second");
}

TEST_F(DoHint, IsRefusedWhileAHundredWait)
{
    EXPECT_EQ(send("shown"), 0);
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(send("waits"), 0) << i;
    }
    EXPECT_EQ(send("refused"), -10000);
    EXPECT_EQ(send("refused"), -10000);
    manager().notificationWindow()->onCloseButton();
    EXPECT_EQ(send("waits again"), 0);
    EXPECT_EQ(send("refused"), -10000);
}

TEST_F(DoHint, KeepsTheFirst64KilobytesOfItsTextAlsoOfHtml)
{
    EXPECT_EQ(send(QByteArray(1'000'000, 'x')), 0);
    EXPECT_EQ(shown()->messageText(), QString(qsizetype{64} * 1024, u'x') + QChar(u'\u2026'));
    manager().notificationWindow()->onCloseButton();
    EXPECT_EQ(send(QByteArray("<p>word").repeated(100'000)), 0);
    EXPECT_LE(shown()->messageText().size(), 64 * 1024 + 1);
    EXPECT_TRUE(shown()->messageText().endsWith(u'\u2026'));
}
