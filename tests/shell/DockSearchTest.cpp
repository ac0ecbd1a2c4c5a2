#include "shell/DockSearch.h"

#include "platform/GraphicalSession.h"
#include "tests/shell/FakeProcessManager.h"
#include "tests/support/LogLines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

std::vector<useconds_t> sleeps;

int recordSleep(useconds_t microseconds)
{
    sleeps.push_back(microseconds);
    return 0;
}

int dockAppearsAfterFiveSleeps(useconds_t microseconds)
{
    sleeps.push_back(microseconds);
    if (sleeps.size() == 5) {
        fakeProcesses.push_back({90, "APPL", "dock", "com.apple.dock"});
    }
    return 0;
}

// NOLINTNEXTLINE(bugprone-string-literal-with-embedded-nul): codes of zeros
const FakeProcess shellProcess{10, "\0\0\0\0", "\0\0\0\0", std::nullopt};
const FakeProcess realDock{50, "APPL", "dock", "com.apple.dock"};

class DockSearch : public testing::Test
{
protected:
    DockSearch()
    {
        fakeProcesses.clear();
        fakePasses = 0;
        fakeDictionaries = 0;
        sleeps.clear();
    }
};

using DockSearchDeathTest = DockSearch;

} // namespace

TEST_F(DockSearch, FindsTheDockAmongOtherProcesses)
{
    fakeProcesses = {shellProcess, {20, "APPL", "mail", "com.example.mail"}, realDock};
    EXPECT_TRUE(__find_dock());
    EXPECT_EQ(fakeDictionaries, 1) << "only a candidate's dictionary is asked for";
}

TEST_F(DockSearch, FindsNothingInAnEmptyList)
{
    EXPECT_FALSE(__find_dock());
}

TEST_F(DockSearch, NeedsTypeSignatureAndIdentifierToMatchExactly)
{
    const FakeProcess impostors[] = {
        {50, "FNDR", "dock", "com.apple.dock"},      {50, "APPL", "Dock", "com.apple.dock"},
        {50, "APPL", "dock", "com.apple.Dock"},      {50, "APPL", "dock", "com.apple.dock2"},
        {50, "APPL", "dock", "com.apple.doc"},       {50, "APPL", "dock", ""},
        {50, "APPL", "dock", std::string(500, 'x')}, {50, "APPL", "dock", std::nullopt},
    };
    for (const FakeProcess &impostor : impostors) {
        fakeProcesses = {impostor};
        EXPECT_FALSE(__find_dock()) << impostor.type << ' ' << impostor.signature << ' '
                                    << impostor.identifier.value_or("no identifier");
    }
}

TEST_F(DockSearch, GoesOnAfterACandidateThatIsNotTheDock)
{
    fakeProcesses = {{20, "APPL", "dock", "com.example.dock"},
                     {30, "APPL", "dock", std::nullopt},
                     {40, "APPL", "dock", "com.apple.dock", false},
                     realDock};
    EXPECT_TRUE(__find_dock());
}

TEST_F(DockSearch, EndsAtAProcessThatCannotBeLookedAt)
{
    FakeProcess vanished = shellProcess;
    vanished.answers = false;
    fakeProcesses = {vanished, realDock};
    EXPECT_FALSE(__find_dock());
}

TEST_F(DockSearch, DoesNotSleepWhenTheDockAlreadyRuns)
{
    fakeProcesses = {realDock};
    __wait_dock(recordSleep);
    EXPECT_TRUE(sleeps.empty());
    EXPECT_EQ(fakePasses, 1);
}

TEST_F(DockSearch, SleepsASecondAfterEachOfThirtyFailedAttemptsAndThenGivesUp)
{
    __wait_dock(recordSleep);
    EXPECT_EQ(sleeps, std::vector<useconds_t>(30, 1'000'000));
    fakeProcesses = {shellProcess};
    fakePasses = 0;
    __wait_dock(recordSleep);
    EXPECT_EQ(fakePasses, 30);
}

TEST_F(DockSearch, SaysWhetherAPanelRunsAtEachAttempt)
{
    LogLines log;
    __wait_dock(recordSleep);
    const std::vector<std::string> lines = log.take();
    EXPECT_EQ(lines.size(), 31U);
    EXPECT_EQ(lines.front(), "kiv.item: attempt 1 of 30: no panel runs");
    EXPECT_EQ(lines.back(), "kiv.item: goes on without a panel");
    fakeProcesses = {realDock};
    __wait_dock(recordSleep);
    EXPECT_EQ(log.take(), std::vector<std::string>{"kiv.item: attempt 1: the item has a place"});
}

// A process of its own, since an end cannot be taken back.
TEST_F(DockSearchDeathTest, EndsTheWaitWithTheSession)
{
    const auto sleepsWhileTheSessionEnds = [] {
        __wait_dock([](useconds_t microseconds) {
            GraphicalSession::requestEnd();
            return recordSleep(microseconds);
        });
        return static_cast<int>(sleeps.size());
    };
    EXPECT_EXIT(std::_Exit(sleepsWhileTheSessionEnds()), testing::ExitedWithCode(1), "");
}

TEST_F(DockSearch, EndsTheWaitAsSoonAsTheDockAppears)
{
    __wait_dock(dockAppearsAfterFiveSleeps);
    EXPECT_EQ(sleeps.size(), 5U);
}
