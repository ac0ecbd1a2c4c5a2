#include "platform/linux/processes/TrayHost.h"

#include "platform/linux/include/XConnection.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/WaitUntil.h"

#include <Carbon/Processes.h>
#include <QCoreApplication>
#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace
{

[[nodiscard]] bool startPanel(ChildProcess &panel)
{
    // The panel waits some seconds for a window manager, which it knows by this; none is wanted here.
    const std::uint32_t one = 1;
    xcb_change_property(XConnection::get(), XCB_PROP_MODE_REPLACE, XConnection::screen()->root,
                        XConnection::atom("_NET_NUMBER_OF_DESKTOPS"), XCB_ATOM_CARDINAL, 32, 1, &one);
    xcb_flush(XConnection::get());
    return panel.start(QStringLiteral("tint2"), {QStringLiteral("-c"), QStringLiteral(KIV_TINT2_CONFIG)});
}

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
    EXPECT_EQ(trayHost(), 0);
    ChildProcess panel;
    ASSERT_TRUE(startPanel(panel));
    EXPECT_TRUE(waitUntil([&] { return trayHost() == panel.pid(); }));
    EXPECT_TRUE(isDock(panel.pid()));
    EXPECT_FALSE(isDock(QCoreApplication::applicationPid()));

    panel.kill();
    EXPECT_TRUE(waitUntil([] { return trayHost() == 0; }));

    ChildProcess next;
    ASSERT_TRUE(startPanel(next));
    EXPECT_TRUE(waitUntil([&] { return isDock(next.pid()); }));
}

TEST(TrayHost, IsFoundInOnePassOverAllProcesses)
{
    ChildProcess panel;
    ASSERT_TRUE(startPanel(panel));
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
