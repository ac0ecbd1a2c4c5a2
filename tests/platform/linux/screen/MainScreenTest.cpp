#include "platform/MainScreen.h"

#include "platform/linux/include/MainDisplay.h"
#include "tests/support/FakeInput.h"
#include "tests/support/WaitUntil.h"
#include "tests/support/Xrandr.h"

#include <QCursor>

#include <gtest/gtest.h>

#include <vector>

namespace
{

struct PickRow {
    const char *what;
    xcb_randr_output_t primary;
    std::vector<DisplayOutput> outputs;
    std::optional<std::size_t> picked;
};

TEST(MainDisplay, IsThePrimaryOutputOrElseTheFirstThatShowsSomething)
{
    const PickRow rows[] = {
        {"the primary one", 12, {{11, 1, true}, {12, 2, true}}, 1},
        {"no primary one", XCB_NONE, {{11, 1, true}, {12, 2, true}}, 0},
        {"primary, disconnected", 12, {{11, 1, true}, {12, 2, false}}, 0},
        {"primary, switched off", 12, {{11, 1, true}, {12, XCB_NONE, true}}, 0},
        {"first disconnected", XCB_NONE, {{11, XCB_NONE, false}, {12, 2, true}}, 1},
        {"first switched off", XCB_NONE, {{11, XCB_NONE, true}, {12, 2, true}}, 1},
        {"none connected", 11, {{11, 1, false}}, std::nullopt},
        {"no outputs", XCB_NONE, {}, std::nullopt},
    };
    for (const PickRow &row : rows) {
        EXPECT_EQ(pickMainOutput(row.primary, row.outputs), row.picked) << row.what;
    }
}

TEST(MainScreen, FollowsASwitchOfSizeAtOnce)
{
    ASSERT_TRUE(xrandr({QStringLiteral("-s"), QStringLiteral("1280x800")}));
    EXPECT_EQ(MainScreen::frame(), (NSRect{{0, 0}, {1280, 800}}));
    ASSERT_TRUE(xrandr({QStringLiteral("-s"), QStringLiteral("1024x768")}));
    EXPECT_EQ(MainScreen::frame(), (NSRect{{0, 0}, {1024, 768}}));
    EXPECT_EQ(MainScreen::toQt({10, 731}), QPoint(10, 37));
    ASSERT_TRUE(xrandr({QStringLiteral("-s"), QStringLiteral("1280x800")}));
    EXPECT_EQ(MainScreen::frame(), (NSRect{{0, 0}, {1280, 800}}));
}

TEST(MainScreen, StaysWhatItWasWhileItIsHeld)
{
    ASSERT_TRUE(xrandr({QStringLiteral("-s"), QStringLiteral("1280x800")}));
    {
        const MainScreen::Held outer;
        {
            const MainScreen::Held inner;
        }
        ASSERT_TRUE(xrandr({QStringLiteral("-s"), QStringLiteral("1024x768")}));
        EXPECT_EQ(MainScreen::frame(), (NSRect{{0, 0}, {1280, 800}}));
        const MainScreen::Held later;
        EXPECT_EQ(MainScreen::toQt({10, 731}), QPoint(10, 69));
    }
    EXPECT_EQ(MainScreen::frame(), (NSRect{{0, 0}, {1024, 768}}));
    ASSERT_TRUE(xrandr({QStringLiteral("-s"), QStringLiteral("1280x800")}));
}

TEST(MainScreen, IsWhatTheDisplayShowsOfALargerRootWindow)
{
    ASSERT_TRUE(xrandr({QStringLiteral("--fb"), QStringLiteral("1500x900")}));
    EXPECT_EQ(MainScreen::frame(), (NSRect{{0, 0}, {1280, 800}}));
    ASSERT_TRUE(xrandr({QStringLiteral("-s"), QStringLiteral("1280x800")}));
}

TEST(MainScreen, LocatesTheMouseFromTheBottomLeft)
{
    FakeInput::moveTo({300, 40});
    EXPECT_EQ(MainScreen::mouseLocation(), (NSPoint{300, 760}));
    EXPECT_EQ(MainScreen::toQt(MainScreen::mouseLocation()), QPoint(300, 40));
    FakeInput::moveTo({0, 799});
    EXPECT_EQ(MainScreen::mouseLocation(), (NSPoint{0, 1}));
}

TEST(MainScreen, ConvertsQtRectangles)
{
    EXPECT_EQ(MainScreen::fromQt(QRect(1254, 5, 22, 22)), (NSRect{{1254, 773}, {22, 22}}));
}

} // namespace
