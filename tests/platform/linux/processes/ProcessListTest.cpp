#include "platform/linux/include/SessionBus.h"
#include "platform/linux/processes/TrayHost.h"
#include "tests/support/BusPeer.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/WaitUntil.h"

#include <Carbon/Processes.h>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{

ProcessSerialNumber numberOf(qint64 pid)
{
    return {0, static_cast<UInt32>(pid)};
}

std::vector<qint64> wholeList()
{
    std::vector<qint64> pids;
    ProcessSerialNumber psn{0, 0};
    while (GetNextProcess(&psn) == noErr) {
        EXPECT_EQ(psn.highLongOfPSN, 0u);
        pids.push_back(psn.lowLongOfPSN);
    }
    return pids;
}

bool contains(const std::vector<qint64> &pids, qint64 pid)
{
    return std::find(pids.begin(), pids.end(), pid) != pids.end();
}

struct Release {
    void operator()(const void *object) const { CFRelease(object); }
};
using Dictionary = std::unique_ptr<const __CFDictionary, Release>;

Dictionary dictionaryOf(qint64 pid)
{
    const ProcessSerialNumber psn = numberOf(pid);
    return Dictionary(ProcessInformationCopyDictionary(&psn, kProcessDictionaryIncludeAllInformationMask));
}

std::string textIn(const Dictionary &dictionary, CFStringRef key)
{
    std::array<char, 300> text{};
    const auto value = static_cast<CFStringRef>(CFDictionaryGetValue(dictionary.get(), key));
    EXPECT_TRUE(CFStringGetCString(value, text.data(), text.size(), kCFStringEncodingUTF8));
    return text.data();
}

TEST(GetNextProcess, ListsOurProcessesAscending)
{
    ChildProcess child;
    ASSERT_TRUE(child.start(QStringLiteral("sleep"), {QStringLiteral("60")}));
    const std::vector<qint64> pids = wholeList();
    EXPECT_TRUE(std::is_sorted(pids.begin(), pids.end()));
    EXPECT_EQ(std::adjacent_find(pids.begin(), pids.end()), pids.end());
    EXPECT_TRUE(contains(pids, ::getpid()));
    EXPECT_TRUE(contains(pids, child.pid()));

    const qint64 ended = child.pid();
    child.kill();
    EXPECT_FALSE(contains(wholeList(), ended));
}

TEST(GetNextProcess, GoesOnAfterAProcessThatHasEnded)
{
    ChildProcess child;
    ASSERT_TRUE(child.start(QStringLiteral("sleep"), {QStringLiteral("60")}));
    ProcessSerialNumber psn = numberOf(::getpid() - 1);
    ASSERT_EQ(GetNextProcess(&psn), noErr);
    EXPECT_EQ(psn.lowLongOfPSN, static_cast<UInt32>(::getpid())) << "that the one before runs does not matter";
}

TEST(GetNextProcess, LeavesOtherUsersProcessesOut)
{
    if (::geteuid() != 0) {
        EXPECT_FALSE(contains(wholeList(), 1));
        return;
    }
    ChildProcess child;
    ASSERT_TRUE(child.start(QStringLiteral("setpriv"),
                            {QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"),
                             QStringLiteral("--clear-groups"), QStringLiteral("sleep"), QStringLiteral("60")}));
    ASSERT_TRUE(waitUntil([&] { return QFileInfo(QStringLiteral("/proc/%1").arg(child.pid())).ownerId() == 65534; }));
    EXPECT_FALSE(contains(wholeList(), child.pid()));
    const ProcessSerialNumber psn = numberOf(child.pid());
    ProcessInfoRec info{};
    info.processInfoLength = sizeof info;
    EXPECT_EQ(GetProcessInformation(&psn, &info), noErr) << "its information is open all the same";
}

TEST(GetNextProcess, LeavesZombiesOut)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(0);
    }
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT), 0);
    EXPECT_FALSE(contains(wholeList(), child));
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
}

TEST(GetNextProcess, EndsTheListWithoutChangingTheNumber)
{
    EXPECT_EQ(GetNextProcess(nullptr), paramErr);
    for (const ProcessSerialNumber &last :
         {ProcessSerialNumber{0, 0x7fffffff}, ProcessSerialNumber{0, 0xffffffff}, ProcessSerialNumber{1, 0}}) {
        ProcessSerialNumber psn = last;
        EXPECT_EQ(GetNextProcess(&psn), procNotFound);
        EXPECT_EQ(psn.highLongOfPSN, last.highLongOfPSN);
        EXPECT_EQ(psn.lowLongOfPSN, last.lowLongOfPSN);
    }
}

TEST(GetProcessInformation, RefusesWhatIsNotThere)
{
    const ProcessSerialNumber psn = numberOf(::getpid());
    ProcessInfoRec info{};
    info.processInfoLength = sizeof info;
    EXPECT_EQ(GetProcessInformation(nullptr, &info), paramErr);
    EXPECT_EQ(GetProcessInformation(&psn, nullptr), paramErr);
    info.processInfoLength = sizeof info - 1;
    EXPECT_EQ(GetProcessInformation(&psn, &info), paramErr);

    info.processInfoLength = sizeof info;
    info.processType = 4711;
    for (const ProcessSerialNumber &none : {ProcessSerialNumber{0, 0}, ProcessSerialNumber{0, 0x7fffffff}}) {
        EXPECT_EQ(GetProcessInformation(&none, &info), procNotFound);
        EXPECT_EQ(ProcessInformationCopyDictionary(&none, 0), nullptr);
    }
    EXPECT_EQ(info.processType, 4711u);
    EXPECT_EQ(ProcessInformationCopyDictionary(nullptr, 0), nullptr);
}

TEST(GetProcessInformation, KnowsNoDockWithoutATray)
{
    // This process counts as the Dock once there has been none for three seconds.
    const ProcessSerialNumber psn = numberOf(::getppid());
    ProcessInfoRec info{};
    info.processInfoLength = sizeof info;
    info.processType = info.processSignature = info.processMode = 4711;
    ASSERT_EQ(GetProcessInformation(&psn, &info), noErr);
    EXPECT_EQ(info.processNumber.lowLongOfPSN, psn.lowLongOfPSN);
    EXPECT_EQ(info.processType, 0u);
    EXPECT_EQ(info.processSignature, 0u);
    EXPECT_EQ(info.processMode, 0u);
    const Dictionary dictionary = dictionaryOf(::getppid());
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("CFBundleIdentifier")), nullptr);
    EXPECT_EQ(trayHost(), 0);
}

TEST(TrayHost, IsTheStatusNotifierWatcherWithoutATraySelection)
{
    PrivateBus daemon;
    ASSERT_TRUE(daemon.start());
    qputenv("DBUS_SESSION_BUS_ADDRESS", daemon.address().toUtf8());
    ASSERT_TRUE(waitUntil([] { return SessionBus::instance().isConnected(); }));
    EXPECT_EQ(trayHost(), 0);

    BusPeer watcher(daemon);
    ASSERT_TRUE(watcher.connection().registerService(QStringLiteral("org.kde.StatusNotifierWatcher")));
    ASSERT_TRUE(waitUntil([] { return trayHost() == ::getpid(); }));
    const ProcessSerialNumber psn = numberOf(::getpid());
    ProcessInfoRec info{};
    info.processInfoLength = sizeof info;
    ASSERT_EQ(GetProcessInformation(&psn, &info), noErr);
    EXPECT_EQ(info.processType, fourCharCode("APPL"));
    EXPECT_EQ(info.processSignature, fourCharCode("dock"));
    EXPECT_EQ(textIn(dictionaryOf(::getpid()), CFSTR("CFBundleIdentifier")), "com.apple.dock");

    ChildProcess child;
    ASSERT_TRUE(child.start(QStringLiteral("sleep"), {QStringLiteral("60")}));
    const std::vector<qint64> pids = wholeList();
    ASSERT_FALSE(pids.empty());
    EXPECT_EQ(pids.front(), ::getpid()) << "it is found at once";
    EXPECT_EQ(std::ranges::count(pids, ::getpid()), 1);
    EXPECT_TRUE(std::is_sorted(pids.begin() + 1, pids.end()));
    EXPECT_TRUE(contains(pids, child.pid()));

    watcher.leave();
    EXPECT_TRUE(waitUntil([] { return trayHost() == 0; }));
}

} // namespace
