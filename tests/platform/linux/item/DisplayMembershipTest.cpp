#include "platform/linux/item/DisplayMembership.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/TestXServer.h"
#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

#include <unistd.h>
#include <vector>

namespace
{

using Membership = DisplayMembership;

struct Row {
    const char *what;
    DisplayNames one;
    DisplayNames other;
    bool same;
};

TEST(SameDisplay, IsTheXDisplayWhereBothNameOneElseTheWaylandDisplay)
{
    const Row rows[] = {
        {"X, the same", {":7", ""}, {":7", ""}, true},
        {"X, another", {":7", ""}, {":8", ""}, false},
        {"X, one that begins so", {":7", ""}, {":70", ""}, false},
        {"X, its screen named", {":7.0", ""}, {":7", ""}, true},
        {"X, over a socket by name", {"unix:7", ""}, {":7.0", ""}, true},
        {"X, of another host", {"far:7", ""}, {":7", ""}, false},
        {"X, the same of a host whose name has points", {"a.far:7.0", ""}, {"a.far:7", ""}, true},
        {"X, no number", {"nonsense", ""}, {":7", ""}, false},
        {"Wayland, the same", {"", "wayland-1"}, {"", "wayland-1"}, true},
        {"Wayland, another", {"", "wayland-1"}, {"", "wayland-0"}, false},
        {"Wayland only of the one", {":7", "wayland-1"}, {"", "wayland-1"}, true},
        {"Wayland the same, X another: a desktop within a desktop", {":7", "wayland-1"}, {":0", "wayland-1"}, false},
        {"X the same, Wayland another", {":7", "wayland-1"}, {":7", "wayland-0"}, true},
        {"nothing in common", {":7", ""}, {"", "wayland-1"}, false},
        {"nothing at all", {"", ""}, {"", ""}, false},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(isSameDisplay(row.one, row.other), row.same) << row.what;
        EXPECT_EQ(isSameDisplay(row.other, row.one), row.same) << row.what << ", turned round";
    }
}

TEST(DisplayNames, AreThoseOfTheEnvironmentAndOfNoVariableThatEndsSo)
{
    const DisplayNames names = displayNames(QByteArrayLiteral("OLD_DISPLAY=:1\0DISPLAY=:7\0NO_WAYLAND_DISPLAY=x\0"
                                                              "WAYLAND_DISPLAY=wayland-1\0DISPLAY=:9\0"));
    EXPECT_EQ(names.display, ":7");
    EXPECT_EQ(names.waylandDisplay, "wayland-1");
    EXPECT_EQ(displayNames({}).display, "");
}

/// A program that has DISPLAY and does nothing.
bool startIdle(ChildProcess &program, const QString &display)
{
    program.environment.insert(QStringLiteral("DISPLAY"), display);
    return program.start(QStringLiteral("sleep"), {QStringLiteral("1000")});
}

TEST(DisplayMembership, IsHadByAClientOfTheXServerWhateverItsEnvironmentSays)
{
    // The test's own environment is from before there was a server.
    EXPECT_EQ(membershipOf(::getpid()), Membership::OfThis);
}

TEST(DisplayMembership, IsHadByAProcessWhoseEnvironmentNamesTheDisplay)
{
    ChildProcess here;
    ASSERT_TRUE(startIdle(here, testXServer().display()));
    EXPECT_TRUE(waitUntil([&] { return membershipOf(static_cast<pid_t>(here.pid())) == Membership::OfThis; }));

    ChildProcess elsewhere;
    ASSERT_TRUE(startIdle(elsewhere, QStringLiteral(":12345")));
    EXPECT_TRUE(waitUntil([&] { return membershipOf(static_cast<pid_t>(elsewhere.pid())) == Membership::OfAnother; }));
}

TEST(DisplayMembership, CannotBeToldOfAProcessThatIsNotThere)
{
    EXPECT_EQ(membershipOf(0), Membership::Unknown);
}

TEST(DisplayMembership, IsThatOfTheNamesWhereBothHaveOne)
{
    const DisplayNames own{":7", ""};
    EXPECT_EQ(membershipByNames({":7.0", ""}, own), Membership::OfThis);
    EXPECT_EQ(membershipByNames({":8", ""}, own), Membership::OfAnother);
    EXPECT_EQ(membershipByNames({"", "wayland-0"}, own), Membership::OfAnother) << "the desktop at the console";
    EXPECT_EQ(membershipByNames({"", ""}, own), Membership::Unknown);
    EXPECT_EQ(membershipByNames({":7", ""}, {"", ""}), Membership::Unknown);
}

TEST(DisplayMembership, IsOfAnotherDisplayForAllWhereItIsForOne)
{
    using All = std::vector<Membership>;
    EXPECT_EQ(membershipOfAll(All{}), Membership::Unknown);
    EXPECT_EQ(membershipOfAll(All{Membership::Unknown, Membership::Unknown}), Membership::Unknown);
    EXPECT_EQ(membershipOfAll(All{Membership::Unknown, Membership::OfThis}), Membership::OfThis);
    EXPECT_EQ(membershipOfAll(All{Membership::OfThis, Membership::Unknown}), Membership::OfThis);
    EXPECT_EQ(membershipOfAll(All{Membership::OfThis, Membership::OfAnother}), Membership::OfAnother);
    EXPECT_EQ(membershipOfAll(All{Membership::OfAnother, Membership::OfThis}), Membership::OfAnother);
    EXPECT_EQ(membershipOfAll(All{Membership::OfAnother, Membership::Unknown}), Membership::OfAnother);
}

} // namespace
