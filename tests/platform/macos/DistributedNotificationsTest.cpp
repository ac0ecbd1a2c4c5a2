#include "platform/DistributedNotifications.h"

#include "tests/platform/macos/FakeCoreFoundation.h"
#include "tests/support/LogLines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace
{

using FakeCoreFoundation::centre;

const QString settings = QStringLiteral("KivMunuUpdateSettingsNotification");

} // namespace

TEST(MacDistributedNotifications, CallWhoeverObservesThatName)
{
    const int before = FakeCoreFoundation::liveObjects();
    int calls = 0;
    const auto observer = DistributedNotifications::addObserver(settings, [&] { ++calls; });
    centre().post("Another");
    EXPECT_EQ(calls, 0);
    centre().post(settings.toStdString());
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(FakeCoreFoundation::liveObjects(), before) << "the name was not released";
}

TEST(MacDistributedNotifications, ComeWhileTheProgramIsNotTheActiveOne)
{
    const auto observer = DistributedNotifications::addObserver(settings, [] {});
    ASSERT_EQ(centre().entries.size(), 1);
    EXPECT_TRUE(centre().entries.front().atOnce);
}

TEST(MacDistributedNotifications, AreToldToTheObserversOfOtherProgramsAtOnce)
{
    int calls = 0;
    const auto observer = DistributedNotifications::addObserver(settings, [&] { ++calls; });
    const int before = FakeCoreFoundation::liveObjects();
    EXPECT_TRUE(DistributedNotifications::post(settings));
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(FakeCoreFoundation::liveObjects(), before) << "the name was not released";
}

TEST(MacDistributedNotifications, EndWithTheObserver)
{
    DistributedNotifications::addObserver(settings, [] {}).reset();
    EXPECT_TRUE(centre().entries.empty());
}

TEST(MacDistributedNotifications, LetNothingThatIsThrownReachTheSystem)
{
    LogLines log;
    const auto careless =
        DistributedNotifications::addObserver(settings, [] { throw std::runtime_error("no such key"); });
    const auto wild = DistributedNotifications::addObserver(settings, [] { throw 1; });
    EXPECT_NO_THROW(centre().post(settings.toStdString()));
    EXPECT_THAT(log.takeWarnings(),
                testing::ElementsAre(testing::HasSubstr("no such key"), testing::HasSubstr("something was thrown")));
}
