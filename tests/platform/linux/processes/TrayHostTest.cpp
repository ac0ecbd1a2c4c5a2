#include "platform/linux/processes/TrayHost.h"

#include "tests/platform/linux/PrivatePanel.h"
#include "tests/support/WaitUntil.h"

#include <Carbon/Processes.h>
#include <QCoreApplication>
#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace
{

bool isDock(qint64 pid)
{
    const ProcessSerialNumber psn{0, static_cast<UInt32>(pid)};
    ProcessInfoRec info{};
    info.processInfoLength = sizeof info;
    return GetProcessInformation(&psn, &info) == noErr && info.processType == fourCharCode("APPL") &&
           info.processSignature == fourCharCode("dock");
}

TEST(TrayHost, IsThePanelThatOwnsTheTraySelection)
{
    PrivatePanel panel;
    ASSERT_TRUE(panel.start());
    EXPECT_TRUE(waitUntil([&] { return trayHost() == panel.pid(); }));
    EXPECT_TRUE(isDock(panel.pid()));
    EXPECT_FALSE(isDock(QCoreApplication::applicationPid()));

    panel.stop();
    EXPECT_TRUE(waitUntil([&] { return !isDock(panel.pid()); }));

    PrivatePanel next;
    ASSERT_TRUE(next.start());
    EXPECT_TRUE(waitUntil([&] { return isDock(next.pid()); }));
}

TEST(TrayHost, IsThisProgramFromTheThirdSecondWithoutAnyOn)
{
    using namespace std::chrono_literals;
    EXPECT_EQ(hostInPlace(0, 0ms), 0);
    EXPECT_EQ(hostInPlace(0, 2999ms), 0);
    EXPECT_EQ(hostInPlace(0, 3000ms), QCoreApplication::applicationPid());
    EXPECT_EQ(hostInPlace(7, 3000ms), 7);
}

TEST(TrayHost, IsFoundInOnePassOverAllProcesses)
{
    PrivatePanel panel;
    ASSERT_TRUE(panel.start());
    ASSERT_TRUE(waitUntil([&] { return isDock(panel.pid()); }));
    QElapsedTimer time;
    time.start();
    int processes = 0;
    int docks = 0;
    ProcessSerialNumber psn{0, 0};
    while (GetNextProcess(&psn) == noErr) {
        ++processes;
        docks += isDock(psn.lowLongOfPSN) ? 1 : 0;
    }
    RecordProperty("processes", processes);
    RecordProperty("microseconds", static_cast<int>(time.nsecsElapsed() / 1000));
    EXPECT_EQ(docks, 1);
    EXPECT_GE(processes, 3);
}

} // namespace
