#include "tools/kivservice/VncSession.h"

#include "menu/MenuCommands.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/WaitUntil.h"

#include <QByteArrayList>

#include <gtest/gtest.h>

namespace
{

/// A session without a VNC server: there is no display.
class VncSessionTest : public testing::Test
{
protected:
    [[nodiscard]] QByteArray reportOn(std::uint32_t code)
    {
        reports.clear();
        session.carryOut(code);
        EXPECT_TRUE(waitUntil([this] { return !reports.isEmpty(); }));
        return reports.value(0);
    }

    QByteArrayList reports;
    VncSession session{[this](const QByteArray &line) { reports.append(line); }};
};

} // namespace

TEST_F(VncSessionTest, SaysWhatAVncServerCannotDo)
{
    EXPECT_EQ(reportOn(kMenuCmdMinimize), "not carried out: Minimize (a VNC server cannot do this)");
    EXPECT_EQ(reportOn(kMenuCmdOptions), "not carried out: Options (a VNC server cannot do this)");
    EXPECT_EQ(reportOn(1), "not carried out: 1 (a VNC server cannot do this)");
}

TEST_F(VncSessionTest, SaysInOneLineWhyTheViewersCouldNotBePutOut)
{
    const ScopedVariable noDisplay("DISPLAY", "");
    const QByteArray report = reportOn(kMenuCmdDisconnect);
    EXPECT_TRUE(report.startsWith("cannot disconnect the viewers: ")) << report.constData();
    EXPECT_TRUE(report.contains("unable to open display")) << report.constData();
    EXPECT_FALSE(report.contains('\n')) << report.constData();
    EXPECT_EQ(reports.size(), 1);
}

TEST_F(VncSessionTest, SaysThatTheProgramForItIsMissing)
{
    const ScopedVariable nowhere("PATH", "/nonexistent");
    EXPECT_EQ(reportOn(kMenuCmdDisconnect),
              "cannot disconnect the viewers: vncconfig (Debian package tigervnc-common) cannot be started");
    EXPECT_EQ(reports.size(), 1);
}
