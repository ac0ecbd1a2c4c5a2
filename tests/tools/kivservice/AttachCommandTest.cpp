#include "shell/link/EventCodes.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/WaitUntil.h"

#include <Carbon/Carbon.h>
#include <QFile>

#include <gtest/gtest.h>

#include <unistd.h>

namespace
{

std::vector<std::uint32_t> commands;

OSErr recordCommand(const AppleEvent *event, AppleEvent *, SRefCon)
{
    std::uint32_t command = 0;
    AEGetParamPtr(event, kMenuParamCommand, typeSInt32, nullptr, &command, sizeof command, nullptr);
    commands.push_back(command);
    return noErr;
}

/// The program itself. This process receives events as an agent does, and is one for whoever names its process ID.
class AttachCommand : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        bus = new PrivateBus;
        ASSERT_TRUE(bus->start());
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus->address().toLocal8Bit());
        AEInstallEventHandler(kMenuEventClass, kMenuEventID, recordCommand, nullptr, false);
    }
    static void TearDownTestSuite()
    {
        AERemoveEventHandler(kMenuEventClass, kMenuEventID, recordCommand, false);
        delete bus;
        bus = nullptr;
    }

    AttachCommand()
    {
        commands.clear();
        service.environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus->address());
        service.process().setProcessChannelMode(QProcess::MergedChannels);
    }

    void start(const char *arguments)
    {
        ASSERT_TRUE(service.start(QStringLiteral(KIV_SERVICE), QString::fromLatin1(arguments).split(u' ')));
    }
    void startAttached()
    {
        start(("attach --pid " + std::to_string(::getpid())).c_str());
        ASSERT_TRUE(waitUntil([this] { return service.output().contains("attached"); })) << service.output().data();
    }

    /// The exit status, once it has ended by itself.
    int status()
    {
        EXPECT_TRUE(waitUntil([this] { return !service.isRunning(); })) << service.output().data();
        return service.exitCode();
    }
    /// Its last line.
    QByteArray lastLine() { return service.output().trimmed().split('\n').last(); }

    static PrivateBus *bus;
    ChildProcess service;
};

PrivateBus *AttachCommand::bus = nullptr;

} // namespace

TEST_F(AttachCommand, FailsWithoutABus)
{
    service.environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                               QStringLiteral("unix:path=/nonexistent/bus"));
    start("attach");
    EXPECT_EQ(status(), 1);
    EXPECT_EQ(lastLine(), "kivservice: there is no session bus (DBUS_SESSION_BUS_ADDRESS)");
}

TEST_F(AttachCommand, FailsWithoutAnAgent)
{
    start("attach");
    EXPECT_EQ(status(), 1);
    EXPECT_EQ(lastLine(), "kivservice: no agent (kivmenua) runs on this session bus");
}

TEST_F(AttachCommand, FailsForAProcessThatIsNoAgent)
{
    start("attach --pid 1");
    EXPECT_EQ(status(), 1);
    EXPECT_EQ(lastLine(), "kivservice: process 1 is no agent of this session bus");
}

TEST_F(AttachCommand, LeavesThePlaceOfAClosedStandardErrorToNobody)
{
    ASSERT_TRUE(
        service.start(QStringLiteral("/bin/sh"),
                      {QStringLiteral("-c"), QStringLiteral("exec \"$0\" \"$@\" 2>&-"), QStringLiteral(KIV_SERVICE),
                       QStringLiteral("attach"), QStringLiteral("--pid"), QString::number(::getpid())}));
    ASSERT_TRUE(waitUntil([this] { return service.output().contains("attached"); })) << service.output().data();
    EXPECT_EQ(QFile::symLinkTarget(QStringLiteral("/proc/%1/fd/2").arg(service.pid())), QStringLiteral("/dev/null"))
        << "its lines would go there";
}

TEST_F(AttachCommand, RefusesWrongUsage)
{
    for (const char *arguments : {"attach --pid", "attach --pid abc", "attach --pid 0", "attach now", "detach"}) {
        ChildProcess wrong;
        wrong.process().setProcessChannelMode(QProcess::MergedChannels);
        ASSERT_TRUE(wrong.start(QStringLiteral(KIV_SERVICE), QString::fromLatin1(arguments).split(u' ')));
        ASSERT_TRUE(waitUntil([&] { return !wrong.isRunning(); }));
        EXPECT_EQ(wrong.exitCode(), 2) << arguments;
        EXPECT_TRUE(wrong.output().contains("kivservice attach [--pid N]")) << arguments;
    }
}

TEST_F(AttachCommand, ClaimsTheAgentAndSendsWhatTheLinesSay)
{
    startAttached();
    service.write("flags 6\nactions 32793\nactions none\n\nhint Good morning\n");
    EXPECT_TRUE(waitUntil([] { return commands.size() == 5; }));
    EXPECT_EQ(commands, (std::vector<std::uint32_t>{kMenuEvtSetOwner, kMenuEvtSetOptions, kMenuEvtSetOptions,
                                                    kMenuEvtSetOptions, kMenuEvtDoHint}));
}

TEST_F(AttachCommand, EndsWithItsInput)
{
    startAttached();
    service.write("flags 2"); // The last line need not be ended.
    service.closeInput();
    EXPECT_EQ(status(), 0);
    EXPECT_TRUE(waitUntil([] { return commands.size() == 2; }));
}

TEST_F(AttachCommand, EndsTheAgentAndItselfAtQuit)
{
    startAttached();
    service.write("quit\n");
    EXPECT_EQ(status(), 0);
    EXPECT_TRUE(waitUntil([] { return !commands.empty() && commands.back() == kMenuEvtQuit; }));
}

TEST_F(AttachCommand, FailsAtABadLineAndSaysWhatIsWrongWithIt)
{
    startAttached();
    service.write("flags six\n");
    EXPECT_EQ(status(), 1);
    EXPECT_EQ(lastLine(), "kivservice: \"flags six\": expected flags NUMBER");
}
