#include "shell/link/EventLink.h"

#include "shell/link/EventCodes.h"
#include "tests/support/SystemLog.h"

#include <gtest/gtest.h>

#include <syslog.h>

namespace
{

constexpr ProcessSerialNumber noProcess{0, 0};

ProcessSerialNumber self()
{
    ProcessSerialNumber psn{};
    EXPECT_EQ(GetCurrentProcess(&psn), noErr);
    return psn;
}

class EventLink : public testing::Test
{
protected:
    EventLink() { [[maybe_unused]] const auto earlier = SystemLog::take(); }
    ~EventLink() override { kivmAEDisposeEvent(&event); }

    ProcessSerialNumber here = self();
    AppleEvent event{};
};

} // namespace

TEST(EventCodes, AreTheFourCharactersThatTheServiceKnows)
{
    EXPECT_EQ(kMenuEventClass, 0x6b766d63U);       // kvmc
    EXPECT_EQ(kMenuEventID, 0x6b766d65U);          // kvme
    EXPECT_EQ(kMenuParamCommand, 0x6d70636dU);     // mpcm
    EXPECT_EQ(kMenuParamSender, 0x6d70736eU);      // mpsn
    EXPECT_EQ(kMenuParamFlags, 0x6d70666cU);       // mpfl
    EXPECT_EQ(kMenuParamActionCount, 0x6d70616eU); // mpan
    EXPECT_EQ(kMenuParamActions, 0x6d706163U);     // mpac
    EXPECT_EQ(kMenuParamHintSize, 0x6d706873U);    // mphs
    EXPECT_EQ(kMenuParamHintText, 0x6d706874U);    // mpht
    EXPECT_EQ(typeMenuActionList, 0x75696275U);    // uibu
    EXPECT_EQ(typeMenuHintText, 0x70747874U);      // ptxt
    EXPECT_EQ(kMenuEvtAction, 0x6d656f61U);        // meoa
    EXPECT_EQ(kMenuEvtSetOwner, 0x6d657370U);      // mesp
    EXPECT_EQ(kMenuEvtSetOptions, 0x6d65736fU);    // meso
    EXPECT_EQ(kMenuEvtDoHint, 0x6d656468U);        // medh
    EXPECT_EQ(kMenuEvtQuit, 0x6d657169U);          // meqi
}

TEST_F(EventLink, BuildsAnEventWithItsCommandAndItsSender)
{
    ASSERT_TRUE(kivmAECreateEvent(&here, &here, kMenuEvtAction, &event));

    std::uint32_t command = 0;
    Size size = 0;
    EXPECT_EQ(AEGetParamPtr(&event, kMenuParamCommand, typeSInt32, nullptr, &command, sizeof command, &size), noErr);
    EXPECT_EQ(command, kMenuEvtAction);
    EXPECT_EQ(size, 4);

    ProcessSerialNumber sender{};
    EXPECT_EQ(AEGetParamPtr(&event, kMenuParamSender, typeProcessSerialNumber, nullptr, &sender, sizeof sender, &size),
              noErr);
    EXPECT_EQ(sender.highLongOfPSN, here.highLongOfPSN);
    EXPECT_EQ(sender.lowLongOfPSN, here.lowLongOfPSN);
    EXPECT_EQ(size, 8);
}

TEST_F(EventLink, BuildsNothingWithoutSenderTargetEventOrCommandAndSaysNothingAboutIt)
{
    EXPECT_FALSE(kivmAECreateEvent(nullptr, &here, kMenuEvtAction, &event));
    EXPECT_FALSE(kivmAECreateEvent(&here, nullptr, kMenuEvtAction, &event));
    EXPECT_FALSE(kivmAECreateEvent(&here, &here, kMenuEvtAction, nullptr));
    EXPECT_FALSE(kivmAECreateEvent(&here, &here, 0, &event));
    EXPECT_TRUE(SystemLog::take().empty());
}

TEST_F(EventLink, LogsAFailedSendOnce)
{
    ASSERT_TRUE(kivmAECreateEvent(&here, &noProcess, kMenuEvtAction, &event));
    EXPECT_TRUE(SystemLog::take().empty());
    EXPECT_FALSE(kivmAESendEvent(&event, nullptr, false));
    EXPECT_EQ(SystemLog::take(), (std::vector<SystemLog::Entry>{{LOG_ERR, "kivmAESendEvent failed, error=-600"}}));
}

TEST_F(EventLink, DisposesOfAnEventOnceAndOfNullNever)
{
    kivmAEDisposeEvent(nullptr);
    ASSERT_TRUE(kivmAECreateEvent(&here, &here, kMenuEvtAction, &event));
    kivmAEDisposeEvent(&event);
    EXPECT_EQ(event.descriptorType, typeNull);
    std::uint32_t command = 0;
    EXPECT_NE(AEGetParamPtr(&event, kMenuParamCommand, typeSInt32, nullptr, &command, sizeof command, nullptr), noErr);
}

TEST_F(EventLink, KnowsTheSameProcess)
{
    const ProcessSerialNumber other{0, here.lowLongOfPSN + 1};
    const ProcessSerialNumber high{1, here.lowLongOfPSN};
    EXPECT_TRUE(kivmAESameProcess(&here, &here));
    EXPECT_FALSE(kivmAESameProcess(&here, &other));
    EXPECT_FALSE(kivmAESameProcess(&here, &high));
    EXPECT_FALSE(kivmAESameProcess(nullptr, &here));
    EXPECT_FALSE(kivmAESameProcess(&here, nullptr));
    EXPECT_FALSE(kivmAESameProcess(nullptr, nullptr));
}

TEST_F(EventLink, NeverTakesNoProcessForTheSameAsNoProcess)
{
    EXPECT_FALSE(kivmAESameProcess(&noProcess, &noProcess));
}

TEST_F(EventLink, TakesAnEventThatNoTransportBroughtForGenuine)
{
    ASSERT_TRUE(kivmAECreateEvent(&here, &here, kMenuEvtAction, &event));
    EXPECT_FALSE(kivmAEIsForged(&event, &here));
}
