#include "tools/kivservice/DisplaySwitcher.h"

#include "tests/support/MainDisplaySize.h"
#include "tools/kivservice/ModeTiming.h"

#include <Carbon/Carbon.h>

#include <gtest/gtest.h>

namespace
{

int modesOfSize(int width, int height)
{
    int count = 0;
    const CFArrayRef modes = CGDisplayAvailableModes(CGMainDisplayID());
    for (CFIndex i = 0; i < CFArrayGetCount(modes); ++i) {
        const auto mode = static_cast<CFDictionaryRef>(CFArrayGetValueAtIndex(modes, i));
        const auto number = [mode](CFStringRef key) {
            SInt32 value = 0;
            CFNumberGetValue(static_cast<CFNumberRef>(CFDictionaryGetValue(mode, key)), kCFNumberSInt32Type, &value);
            return value;
        };
        count += number(CFSTR("Width")) == width && number(CFSTR("Height")) == height;
    }
    return count;
}

class DisplaySwitcherTest : public testing::Test
{
protected:
    ~DisplaySwitcherTest() override { EXPECT_EQ(switchMainDisplay({1280, 800}), QString()); }
};

} // namespace

TEST_F(DisplaySwitcherTest, SwitchesToAListedMode)
{
    ASSERT_EQ(modesOfSize(1024, 768), 1);
    EXPECT_EQ(switchMainDisplay({1024, 768}), QString());
    EXPECT_EQ(mainDisplaySize(), QSize(1024, 768));
    EXPECT_EQ(modesOfSize(1024, 768), 1);
}

TEST_F(DisplaySwitcherTest, ListsANewModeForASizeThatWasNotListedAndKeepsIt)
{
    ASSERT_EQ(modesOfSize(1234, 777), 0);
    EXPECT_EQ(switchMainDisplay({1234, 777}), QString());
    EXPECT_EQ(mainDisplaySize(), QSize(1234, 777));
    EXPECT_EQ(switchMainDisplay({1024, 768}), QString());
    EXPECT_EQ(modesOfSize(1234, 777), 1);
    EXPECT_EQ(switchMainDisplay({1234, 777}), QString());
    EXPECT_EQ(mainDisplaySize(), QSize(1234, 777));
    EXPECT_EQ(modesOfSize(1234, 777), 1);
}

TEST_F(DisplaySwitcherTest, GrowsAndShrinksTheScreenInBothDirections)
{
    for (const DisplaySize size : {DisplaySize{1920, 1200}, {640, 480}, {800, 1000}, {1600, 500}, {32, 32}}) {
        EXPECT_EQ(switchMainDisplay(size), QString());
        EXPECT_EQ(mainDisplaySize(), QSize(size.width, size.height));
    }
}

TEST_F(DisplaySwitcherTest, DoesNothingForThePresentSize)
{
    EXPECT_EQ(switchMainDisplay({1280, 800}), QString());
    EXPECT_EQ(mainDisplaySize(), QSize(1280, 800));
}

TEST_F(DisplaySwitcherTest, RefusesWhatTheServerCannotShowAndLeavesTheDisplayAsItWas)
{
    const QString refusal = switchMainDisplay({65535, 65535});
    EXPECT_TRUE(refusal.contains(QLatin1String("outside the X server's limits"))) << qPrintable(refusal);
    EXPECT_EQ(mainDisplaySize(), QSize(1280, 800));
    EXPECT_EQ(modesOfSize(65535, 65535), 0);
}

TEST(ModeTiming, RefreshesSixtyTimesASecond)
{
    for (const DisplaySize size : {DisplaySize{32, 32}, {640, 480}, {1366, 768}, {1920, 1200}, {3840, 2160}}) {
        const xcb_randr_mode_info_t mode = reducedBlankingMode(size);
        EXPECT_NEAR(double(mode.dot_clock) / (double(mode.htotal) * mode.vtotal), 60, 0.01);
        EXPECT_LT(mode.width, mode.hsync_start);
        EXPECT_LT(mode.hsync_start, mode.hsync_end);
        EXPECT_LT(mode.hsync_end, mode.htotal);
        EXPECT_LT(mode.height, mode.vsync_start);
        EXPECT_LT(mode.vsync_start, mode.vsync_end);
        EXPECT_LT(mode.vsync_end, mode.vtotal);
    }
}
