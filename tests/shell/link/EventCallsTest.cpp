#include "shell/link/EventCodes.h"
#include "shell/link/EventLink.h"
#include "tests/shell/link/FakeAppleEventManager.h"
#include "tests/support/SystemLog.h"

#include <gtest/gtest.h>

#include <syslog.h>

namespace
{

using FakeAppleEventManager::calls;
using FakeAppleEventManager::failures;
using Calls = std::vector<std::string>;
using Log = std::vector<SystemLog::Entry>;

/// The link over a faked Apple Event Manager: what it asks of it, and what it does when that fails.
class EventCalls : public testing::Test
{
protected:
    EventCalls()
    {
        FakeAppleEventManager::reset();
        [[maybe_unused]] const Log earlier = SystemLog::take();
    }
    ~EventCalls() override { AEDisposeDesc(&event); }

    bool create() { return kivmAECreateEvent(&here, &here, kMenuEvtSetOptions, &event); }

    const ProcessSerialNumber here{0, static_cast<UInt32>(::getpid())};
    AppleEvent event{};
};

} // namespace

TEST_F(EventCalls, AddressAnEventByProcessIdAndNameItsCommandAndItsSender)
{
    ASSERT_TRUE(create());
    char pid[9];
    std::snprintf(pid, sizeof pid, "%08x", static_cast<unsigned>(::getpid()));
    EXPECT_EQ(calls, (Calls{std::string("AECreateDesc kpid ") + pid, "AECreateAppleEvent kvmc kvme kpid -1 0",
                            "AEPutParamPtr mpcm long 6d65736f", // meso
                            std::string("AEPutParamPtr mpsn psn  ") + pid + "00000000"}));
    EXPECT_EQ(FakeAppleEventManager::descriptors, 1) << "the event alone is left: it holds a copy of the address";
    kivmAEDisposeEvent(&event);
    EXPECT_EQ(FakeAppleEventManager::descriptors, 0);
}

TEST_F(EventCalls, LogEachStepOfBuildingThatFailsOnceAndLeaveNothingBehind)
{
    const std::pair<const char *, std::size_t> steps[] = {
        {"AECreateDesc", 1}, {"AECreateAppleEvent", 2}, {"mpcm", 3}, {"mpsn", 4}};
    OSErr error = -50;
    for (const auto &[step, count] : steps) {
        FakeAppleEventManager::reset();
        failures[step] = --error;
        EXPECT_FALSE(create()) << step;
        EXPECT_EQ(SystemLog::take(), (Log{{LOG_ERR, "kivmAECreateEvent failed, error=" + std::to_string(error)}}))
            << step;
        EXPECT_EQ(FakeAppleEventManager::descriptors, 0) << step;
        EXPECT_EQ(calls.size(), count) << "goes on after " << step;
    }
}

TEST_F(EventCalls, AddressNoProcessWhenThereIsNone)
{
    const ProcessSerialNumber none{0, 0};
    ASSERT_TRUE(kivmAECreateEvent(&here, &none, kMenuEvtAction, &event));
    EXPECT_EQ(calls.front(), "AECreateDesc kpid 00000000");
    EXPECT_TRUE(SystemLog::take().empty());
}

TEST_F(EventCalls, SendWithOrWithoutWaitingForAReplyAndWithoutATimeOut)
{
    ASSERT_TRUE(create());
    calls.clear();
    AppleEvent reply{};
    EXPECT_TRUE(kivmAESendEvent(&event, nullptr, false));
    EXPECT_TRUE(kivmAESendEvent(&event, &reply, true));
    EXPECT_EQ(calls, (Calls{"AESend 1 0 -2", "AESend 3 0 -2 reply"}));
    EXPECT_TRUE(SystemLog::take().empty());
}

TEST_F(EventCalls, LogASendThatFails)
{
    ASSERT_TRUE(create());
    failures["AESend"] = -609;
    EXPECT_FALSE(kivmAESendEvent(&event, nullptr, false));
    EXPECT_EQ(SystemLog::take(), (Log{{LOG_ERR, "kivmAESendEvent failed, error=-609"}}));
}
