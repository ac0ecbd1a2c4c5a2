#include "platform/screen/AvailableDisplayModes.h"

#include "tests/platform/macos/FakeCoreFoundation.h"
#include "tests/platform/macos/FakeCoreGraphics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::ElementsAre;

class AvailableDisplayModes : public testing::Test
{
protected:
    AvailableDisplayModes() { displays = {}; }

    /// Those that the rules of the menu read, as "width x height", with "-" before one that the desktop cannot use.
    static std::vector<std::string> listed()
    {
        std::vector<std::string> sizes;
        const CFArrayRef modes = availableDisplayModes(FakeCoreGraphics::display);
        for (CFIndex i = 0; modes && i < CFArrayGetCount(modes); ++i) {
            const auto mode = static_cast<CFDictionaryRef>(CFArrayGetValueAtIndex(modes, i));
            const auto number = [&](CFStringRef key) {
                return std::to_string(FakeCoreFoundation::number(CFDictionaryGetValue(mode, key)));
            };
            const bool isUsable =
                CFBooleanGetValue(static_cast<CFBooleanRef>(CFDictionaryGetValue(mode, CFSTR("UsableForDesktopGUI"))));
            sizes.push_back((isUsable ? "" : "-") + number(CFSTR("Width")) + " x " + number(CFSTR("Height")));
        }
        return sizes;
    }

    FakeCoreGraphics &displays = FakeCoreGraphics::instance();
};

} // namespace

TEST_F(AvailableDisplayModes, AreTheSystemsInItsOrderWithWhetherTheDesktopCanUseThem)
{
    displays.modes = {{1920, 1200}, {640, 480, false}, {1440, 900}};
    displays.present = {1440, 900};
    EXPECT_THAT(listed(), ElementsAre("1920 x 1200", "-640 x 480", "1440 x 900"));
}

TEST_F(AvailableDisplayModes, IncludeThoseThatShowTheDesktopLarger)
{
    displays.modes = {{2880, 1800}};
    displays.lowResolutionModes = {{1440, 900}};
    displays.present = {1440, 900};
    EXPECT_THAT(listed(), ElementsAre("2880 x 1800", "1440 x 900"));
}

TEST_F(AvailableDisplayModes, AlwaysIncludeTheSizeThatTheDisplayHas)
{
    displays.modes = {{1920, 1080}, {1512, 982, false}};
    displays.present = {1512, 982};
    EXPECT_THAT(listed(), ElementsAre("1920 x 1080", "-1512 x 982", "1512 x 982"));
}

TEST_F(AvailableDisplayModes, AreListedWithoutAPresentOne)
{
    displays.modes = {{800, 600}};
    EXPECT_THAT(listed(), ElementsAre("800 x 600"));
}

TEST_F(AvailableDisplayModes, AreNoneWhereTheSystemTellsNone)
{
    displays.tellsModes = false;
    EXPECT_EQ(availableDisplayModes(FakeCoreGraphics::display), nullptr);
    EXPECT_EQ(availableDisplayModes(0), nullptr);
}

TEST_F(AvailableDisplayModes, AreKeptUntilTheNextCallAndNothingBesides)
{
    displays.modes = {{800, 600}, {1024, 768}};
    displays.present = {1280, 1024};
    listed();
    const int kept = FakeCoreFoundation::liveObjects();
    listed();
    EXPECT_EQ(FakeCoreFoundation::liveObjects(), kept);
    EXPECT_EQ(displays.retainedModes, 0);
}
