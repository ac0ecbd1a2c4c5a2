#include "menu/MenuCommands.h"
#include "platform/Bundle.h"
#include "shell/MenuProcedure.h"
#include "shell/ProcessState.h"
#include "tests/shell/FakeAlertRunner.h"
#include "tests/shell/FakeWorkspace.h"
#include "tests/shell/link/FakeAppleEventManager.h"
#include "tests/support/LogLines.h"
#include "tests/support/SystemLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using FakeAlertRunner::alerts;
using FakeAlertRunner::answers;
using FakeAppleEventManager::calls;
using Calls = std::vector<std::string>;

QString text(const char16_t *utf16)
{
    return QString::fromUtf16(utf16);
}

/// What a chosen entry leads to: alerts, what is opened, and what is sent.
class MenuCommandTest : public testing::Test
{
protected:
    MenuCommandTest()
    {
        FakeAppleEventManager::reset();
        alerts.clear();
        answers.clear();
        openedByWorkspace.clear();
        [[maybe_unused]] const auto earlier = SystemLog::take();
        __mypsn = {0, static_cast<UInt32>(::getpid())};
        __owpsn = __mypsn;
    }
    ~MenuCommandTest() override
    {
        __mypsn = {};
        __owpsn = {};
    }

    /// The value of a key of this program's bundle.
    static QString ofBundle(const char *key) { return Bundle::main().infoString(QLatin1String(key)); }

    static bool isSent() { return !calls.empty() && calls.back().starts_with("AESend"); }
};

} // namespace

TEST_F(MenuCommandTest, OpensThePreferencePaneOfTheServer)
{
    __menu_proc(nullptr, 32790);
    EXPECT_EQ(openedByWorkspace, QStringList{text(u"file /Library/PreferencePanes/kivserverp.prefPane")});
    EXPECT_TRUE(alerts.empty());
    EXPECT_TRUE(calls.empty()) << "this is no command for the service";
}

TEST_F(MenuCommandTest, OpensTheSupportPageOfTheBundle)
{
    ASSERT_FALSE(ofBundle("KIVProductSupport").isEmpty());
    __menu_proc(nullptr, 32800);
    EXPECT_EQ(openedByWorkspace, QStringList{text(u"address ") + ofBundle("KIVProductSupport")});
    EXPECT_TRUE(alerts.empty());
    EXPECT_TRUE(calls.empty());
}

TEST_F(MenuCommandTest, AsksBeforeItDisconnects)
{
    __menu_proc(nullptr, 32792);
    ASSERT_EQ(alerts.size(), 1U);
    EXPECT_EQ(alerts[0].title, text(u"This will disconnect the current Kivune session."));
    EXPECT_EQ(alerts[0].message, text(u"Your programs will continue to run after disconnection.\n"
                                      u"You can reconnect to this session remotely later.\n\n"
                                      u"Do you want to disconnect this session?"));
    EXPECT_EQ(alerts[0].defaultButton, text(u"Yes, disconnect"));
    EXPECT_EQ(alerts[0].alternateButton, text(u"No, continue"));
    EXPECT_TRUE(alerts[0].otherButton.isNull());
}

TEST_F(MenuCommandTest, DisconnectsForTheDefaultButtonAlone)
{
    for (const int answer : {0, -1, -2}) {
        answers = {answer};
        __menu_proc(nullptr, 32792);
        EXPECT_TRUE(calls.empty()) << answer;
    }
    answers = {1};
    __menu_proc(nullptr, 32792);
    EXPECT_TRUE(isSent());
    EXPECT_EQ(std::ranges::count(calls, "AEPutParamPtr mpac uibu 00008018"), 1);
}

TEST_F(MenuCommandTest, ShowsTheProductInformationOfTheBundle)
{
    answers = {1};
    __menu_proc(nullptr, 32799);
    ASSERT_EQ(alerts.size(), 1U) << "Close leads nowhere";
    EXPECT_TRUE(openedByWorkspace.isEmpty());
    EXPECT_TRUE(calls.empty());
    EXPECT_EQ(alerts[0].title, text(u"Kivune Product information."));
    ASSERT_FALSE(ofBundle("KIVBuildVersion").isEmpty());
    EXPECT_EQ(alerts[0].message, text(u"\nProduct:\t\tKivune Server for Mac OS X\nVersion:\t\t") +
                                     ofBundle("KIVBuildVersion") + u'/' + ofBundle("KIVBuildDate") +
                                     text(u"\nCopyright:\t\t") + ofBundle("KIVProductCopyright") +
                                     text(u"\nHome:\t\t") + ofBundle("KIVProductHome") + text(u"\n\n"));
    EXPECT_EQ(alerts[0].defaultButton, text(u"Close"));
    EXPECT_EQ(alerts[0].alternateButton, text(u"Home..."));
    EXPECT_EQ(alerts[0].otherButton, text(u"Credits"));
}

TEST_F(MenuCommandTest, OpensTheHomePageForHomeAndIsDone)
{
    answers = {0};
    __menu_proc(nullptr, 32799);
    EXPECT_EQ(alerts.size(), 1U);
    EXPECT_EQ(openedByWorkspace, QStringList{text(u"address ") + ofBundle("KIVProductHome")});
}

TEST_F(MenuCommandTest, ShowsTheCreditsForCreditsAndIsDone)
{
    for (const int answer : {1, 0, -1, -2}) {
        alerts.clear();
        answers = {-1, answer};
        __menu_proc(nullptr, 32799);
        ASSERT_EQ(alerts.size(), 2U);
    }
    EXPECT_TRUE(openedByWorkspace.isEmpty());
    EXPECT_EQ(alerts[1].title, text(u"Kivune Project credits."));
    // Whoever changes the names changes them here, too; the rest is how the panel expects them.
    EXPECT_EQ(alerts[1].message, text(u"\nProgramming:\t\tThe Kivune contributors"
                                      u"\nImages design:\t\tThe Kivune contributors"
                                      u"\nProduct idea:\t\tThe Kivune contributors"
                                      u"\nCompany:\t\t\tTamborel"
                                      u"\n\n"));
    EXPECT_EQ(alerts[1].defaultButton, text(u"Close"));
    EXPECT_TRUE(alerts[1].alternateButton.isNull());
    EXPECT_TRUE(alerts[1].otherButton.isNull());
}

TEST_F(MenuCommandTest, DoesNothingMoreWhenTheProductInformationGoesUnanswered)
{
    answers = {-2};
    __menu_proc(nullptr, 32799);
    EXPECT_EQ(alerts.size(), 1U);
    EXPECT_TRUE(openedByWorkspace.isEmpty());
}

TEST_F(MenuCommandTest, ForwardsEveryOtherCodeAsItIsAndLeavesNothingBehind)
{
    for (const std::uint32_t code : {32791U, 32793U, 32794U, 32795U, 32796U, 32809U, 0U, 0xFFFFFFFFU}) {
        FakeAppleEventManager::reset();
        __menu_proc(nullptr, code);
        char hexadecimal[9];
        std::snprintf(hexadecimal, sizeof hexadecimal, "%08x", code);
        ASSERT_EQ(calls.size(), 7U) << code;
        EXPECT_EQ(calls[2], "AEPutParamPtr mpcm long 6d656f61"); // meoa
        EXPECT_EQ((Calls{calls.begin() + 4, calls.end()}),
                  (Calls{std::string("AEPutParamPtr mpac uibu ") + hexadecimal, "AEPutParamPtr mpan magn 00000001",
                         "AESend 1 0 -2"}));
        EXPECT_EQ(FakeAppleEventManager::descriptors, 0);
    }
    EXPECT_TRUE(alerts.empty());
    EXPECT_TRUE(openedByWorkspace.isEmpty());
}

TEST_F(MenuCommandTest, SaysWhichEntryWasChosen)
{
    using testing::Contains;
    LogLines log;
    const std::pair<std::uint32_t, const char *> entries[] = {
        {32790, "kiv.agent: chosen: \"Server Preferences\" 32790"},
        {32792, "kiv.agent: chosen: \"Disconnect the Session\" 32792"},
        {32793, "kiv.agent: chosen: \"Minimize\" 32793"},
        {32799, "kiv.agent: chosen: \"About Kivune Server\" 32799"},
        {32800, "kiv.agent: chosen: \"Online Support\" 32800"},
    };
    for (const auto &[code, line] : entries) {
        __menu_proc(nullptr, code);
        EXPECT_THAT(log.take(), Contains(line));
    }
}

TEST_F(MenuCommandTest, SendsNothingThatCouldNotBeBuilt)
{
    FakeAppleEventManager::failures["AECreateAppleEvent"] = -108;
    __menu_proc(nullptr, 32793);
    EXPECT_EQ(calls.size(), 2U);
    EXPECT_EQ(SystemLog::take().size(), 1U);
    EXPECT_EQ(FakeAppleEventManager::descriptors, 0);
}

TEST_F(MenuCommandTest, SendsThoughACodeCannotBePutAndDisposesOfWhatCannotBeSent)
{
    FakeAppleEventManager::failures = {{"mpac", -108}, {"mpan", -108}, {"AESend", -600}};
    __menu_proc(nullptr, 32793);
    EXPECT_TRUE(isSent());
    EXPECT_EQ(SystemLog::take().size(), 1U) << "the send alone is logged";
    EXPECT_EQ(FakeAppleEventManager::descriptors, 0);
}
