#include "shell/MenuProcedure.h"

#include "menu/MenuCommands.h"
#include "shell/ProcessState.h"
#include "shell/link/EventCodes.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/SystemLog.h"
#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

#include <syslog.h>

namespace
{

struct Received {
    std::uint32_t command = 0;
    std::uint32_t sender = 0;
    std::vector<std::uint32_t> actions;
    std::uint32_t count = 0;

    bool operator==(const Received &) const = default;
};

std::vector<Received> received;

OSErr recordEvent(const AppleEvent *event, AppleEvent *, SRefCon)
{
    Received one;
    ProcessSerialNumber sender{};
    Size bytes = 0;
    std::uint32_t codes[4]{};
    AEGetParamPtr(event, kMenuParamCommand, typeSInt32, nullptr, &one.command, 4, nullptr);
    AEGetParamPtr(event, kMenuParamSender, typeProcessSerialNumber, nullptr, &sender, 8, nullptr);
    AEGetParamPtr(event, kMenuParamActions, typeMenuActionList, nullptr, codes, sizeof codes, &bytes);
    AEGetParamPtr(event, kMenuParamActionCount, typeUInt32, nullptr, &one.count, 4, nullptr);
    one.sender = sender.lowLongOfPSN;
    one.actions.assign(codes, codes + bytes / 4);
    received.push_back(one);
    return noErr;
}

/// This process is agent and service at once, over a real bus.
class MenuProcedure : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        bus = new PrivateBus;
        ASSERT_TRUE(bus->start());
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus->address().toLocal8Bit());
        GetCurrentProcess(&__mypsn);
    }
    static void TearDownTestSuite()
    {
        delete bus;
        bus = nullptr;
    }

    MenuProcedure()
    {
        received.clear();
        [[maybe_unused]] const auto earlier = SystemLog::take();
        AEInstallEventHandler(kMenuEventClass, kMenuEventID, recordEvent, nullptr, false);
    }
    ~MenuProcedure() override
    {
        AERemoveEventHandler(kMenuEventClass, kMenuEventID, recordEvent, false);
        __owpsn = {};
    }

    static PrivateBus *bus;
};

PrivateBus *MenuProcedure::bus = nullptr;

} // namespace

TEST_F(MenuProcedure, ForwardsEachCodeToTheOwnerAsOneAction)
{
    __owpsn = __mypsn;
    const std::vector<std::uint32_t> codes{kMenuCmdOptions, kMenuCmdMinimize, kMenuCmdReset, kMenuCmdMaximize,
                                           kMenuCmdRestore};
    std::vector<Received> expected;
    for (const std::uint32_t code : codes) {
        __menu_proc(nullptr, code);
        expected.push_back({kMenuEvtAction, static_cast<std::uint32_t>(::getpid()), {code}, 1});
    }
    EXPECT_TRUE(waitUntil([&] { return received.size() == codes.size(); }));
    EXPECT_EQ(received, expected);
    EXPECT_TRUE(SystemLog::take().empty());
}

TEST_F(MenuProcedure, SendsNothingBeforeSomebodyOwnsTheAgentAndLogsThatOnce)
{
    __menu_proc(nullptr, kMenuCmdMinimize);
    EXPECT_EQ(SystemLog::take(), (std::vector<SystemLog::Entry>{{LOG_ERR, "kivmAESendEvent failed, error=-600"}}));
    EXPECT_TRUE(received.empty());
}

TEST_F(MenuProcedure, LogsASendToAnOwnerThatHasEnded)
{
    ChildProcess owner;
    ASSERT_TRUE(owner.start(QStringLiteral("sleep"), {QStringLiteral("60")}));
    __owpsn = {0, static_cast<UInt32>(owner.pid())};
    owner.kill();
    __menu_proc(nullptr, kMenuCmdMinimize);
    EXPECT_EQ(SystemLog::take(), (std::vector<SystemLog::Entry>{{LOG_ERR, "kivmAESendEvent failed, error=-600"}}));
}
