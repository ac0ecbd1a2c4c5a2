#include "platform/MainScreen.h"

#include "tests/platform/macos/FakeCoreFoundation.h"
#include "tests/platform/macos/FakeCoreGraphics.h"

#include <gtest/gtest.h>

namespace
{

class MacMainScreen : public testing::Test
{
protected:
    MacMainScreen() { display = {}; }

    FakeCoreGraphics &display = FakeCoreGraphics::instance();
};

} // namespace

TEST_F(MacMainScreen, HasTheDisplaysBoundsForPointsWhateverItsPixels)
{
    display.bounds = {{0, 0}, {1512, 982}};
    EXPECT_EQ(MainScreen::frame(), (NSRect{{0, 0}, {1512, 982}}));
    EXPECT_EQ(MainScreen::toQt({0, 982}), QPoint(0, 0));
}

TEST_F(MacMainScreen, CountsTheMousesPlaceFromTheBottom)
{
    const int before = FakeCoreFoundation::liveObjects();
    display.mouse = CGPoint{100.5, 20};
    EXPECT_EQ(MainScreen::mouseLocation(), (NSPoint{100.5F, 880}));
    EXPECT_EQ(FakeCoreFoundation::liveObjects(), before) << "the event was not released";
}

TEST_F(MacMainScreen, TakesTheTopLeftCornerForTheMousesPlaceWhenTheSystemDoesNotTell)
{
    EXPECT_EQ(MainScreen::mouseLocation(), (NSPoint{0, 900}));
}

TEST_F(MacMainScreen, IsNotThereWithoutADisplay)
{
    display.bounds = {};
    EXPECT_EQ(MainScreen::frame(), std::nullopt);
}
