#include "menu/DisplaySwitch.h"

#include "tests/support/MainDisplaySize.h"
#include "tests/support/TestXServer.h"

#include <QFile>
#include <QSize>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

namespace
{

/// Against a real X server, with tools that are shell scripts: each writes down its arguments first.
class DisplaySwitch : public testing::Test
{
protected:
    ~DisplaySwitch() override { EXPECT_TRUE(set_dmod(1280, 800, newTool("xrandr -s 1280x800"))); }

    const char *newTool(const char *commands)
    {
        QFile file(folder.filePath(QStringLiteral("tool")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("#!/bin/sh\necho \"$0 $*\" >> " + folder.path().toLocal8Bit() + "/calls\n" + commands + '\n');
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        tool = file.fileName().toLocal8Bit();
        return tool.constData();
    }

    QByteArray takeCalls()
    {
        QFile file(folder.filePath(QStringLiteral("calls")));
        const QByteArray calls = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        file.remove();
        return calls;
    }

    QTemporaryDir folder;
    QByteArray tool;
};

} // namespace

TEST_F(DisplaySwitch, StartsNothingForTheSizeThatTheDisplayHas)
{
    EXPECT_TRUE(set_dmod(1280, 800, newTool("exit 0")));
    EXPECT_EQ(takeCalls(), "");
}

TEST_F(DisplaySwitch, RunsTheToolWithTheSizeAndJudgesByTheDisplay)
{
    const char *switching = newTool("xrandr -s 1024x768");
    EXPECT_TRUE(set_dmod(1024, 768, switching));
    EXPECT_EQ(takeCalls(), tool + " dspcmd set -w 1024 -h 768 -c\n");
    EXPECT_EQ(mainDisplaySize(), QSize(1024, 768));
}

TEST_F(DisplaySwitch, CountsAToolThatFailsButSwitchedTheSizeAsSuccess)
{
    EXPECT_TRUE(set_dmod(1024, 768, newTool("xrandr -s 1024x768; exit 1")));
}

TEST_F(DisplaySwitch, CountsAToolThatSucceedsButSwitchedNothingAsFailure)
{
    EXPECT_FALSE(set_dmod(1024, 768, newTool("exit 0")));
    EXPECT_EQ(takeCalls(), tool + " dspcmd set -w 1024 -h 768 -c\n");
}

TEST_F(DisplaySwitch, CountsAToolThatSwitchedToAnotherSizeAsFailure)
{
    EXPECT_FALSE(set_dmod(1024, 768, newTool("xrandr -s 800x600")));
    EXPECT_FALSE(set_dmod(800, 601, newTool("exit 0")));
    EXPECT_FALSE(set_dmod(801, 600, newTool("exit 0")));
}

TEST_F(DisplaySwitch, CountsAMissingToolAsFailureAndLeavesTheDisplayAlone)
{
    EXPECT_FALSE(set_dmod(1024, 768, "/nonexistent/kivservice"));
    EXPECT_EQ(mainDisplaySize(), QSize(1280, 800));
}

TEST_F(DisplaySwitch, WritesTheSizeAsSignedDecimals)
{
    EXPECT_FALSE(set_dmod(0xFFFFFFFF, 0x7FFFFFFF, newTool("exit 0")));
    EXPECT_EQ(takeCalls(), tool + " dspcmd set -w -1 -h 2147483647 -c\n");
}

TEST_F(DisplaySwitch, LeavesNoChildBehind)
{
    EXPECT_FALSE(set_dmod(1024, 768, newTool("exit 0")));
    EXPECT_FALSE(set_dmod(1024, 768, "/nonexistent/kivservice"));
    QFile children(QStringLiteral("/proc/thread-self/children"));
    ASSERT_TRUE(children.open(QIODevice::ReadOnly));
    EXPECT_EQ(children.readAll().trimmed().split(' '), QList<QByteArray>{QByteArray::number(testXServer().pid())});
}

TEST_F(DisplaySwitch, LetsTheToolDieWithWhoReadsItsOutputAsAnyProgramDoes)
{
    const auto before = std::signal(SIGPIPE, SIG_IGN); // As in the agent.
    EXPECT_FALSE(set_dmod(1024, 768, newTool("grep SigIgn: /proc/self/status > \"${0%/*}/ignored\"")));
    std::signal(SIGPIPE, before);
    QFile ignored(folder.filePath(QStringLiteral("ignored")));
    ASSERT_TRUE(ignored.open(QIODevice::ReadOnly));
    bool isNumber = false;
    const qulonglong signals = ignored.readAll().simplified().split(' ').last().toULongLong(&isNumber, 16);
    ASSERT_TRUE(isNumber);
    EXPECT_EQ(signals & (1ULL << (SIGPIPE - 1)), 0U);
}

TEST_F(DisplaySwitch, SaysOnceWhatItWaitsForWhenThatTakesLong)
{
    static QStringList warnings;
    warnings.clear();
    const auto before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &text) { warnings.append(text); });
    EXPECT_FALSE(set_dmod(1024, 768, newTool("exit 0")));
    EXPECT_TRUE(warnings.isEmpty());
    EXPECT_FALSE(set_dmod(1024, 768, newTool("sleep 0.3"), std::chrono::milliseconds(50)));
    qInstallMessageHandler(before);
    EXPECT_EQ(warnings.size(), 1);
    EXPECT_TRUE(warnings.value(0).contains(QString::fromLocal8Bit(tool)));
}

TEST(ServiceTool, IsTheOneThatTheBuildNames)
{
    EXPECT_STREQ(serviceTool, KIV_SERVICE_TOOL);
}
