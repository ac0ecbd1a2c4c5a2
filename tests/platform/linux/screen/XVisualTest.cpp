#include "platform/linux/screen/XVisual.h"

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

namespace
{

/// One pixel of that format, as its bytes in memory have it.
std::uint32_t pixel(QImage::Format format, Qt::GlobalColor colour)
{
    QImage image(1, 1, format);
    image.fill(colour);
    std::uint32_t bits = 0;
    std::memcpy(&bits, image.constBits(), static_cast<std::size_t>(image.depth() / 8));
    return bits;
}

class PaintableVisual : public testing::TestWithParam<std::tuple<int, std::uint32_t>>
{
};

TEST_P(PaintableVisual, HasTheFormatInWhichItsRedIsRed)
{
    const auto [depth, redMask] = GetParam();
    const QImage::Format format = imageFormat(static_cast<std::uint8_t>(depth), redMask);
    ASSERT_NE(format, QImage::Format_Invalid);
    EXPECT_EQ(pixel(format, Qt::red) & redMask, redMask);
    EXPECT_EQ(pixel(format, Qt::cyan) & redMask, 0u);
}

INSTANTIATE_TEST_SUITE_P(Depths, PaintableVisual,
                         testing::Values(std::tuple(32, 0xff0000), std::tuple(30, 0x3ff00000), std::tuple(24, 0xff0000),
                                         std::tuple(16, 0xf800)));

TEST(XVisual, OfADepthOrOrderThatNoImageHasIsNotPainted)
{
    constexpr std::uint32_t blueFirst = 0xff;
    for (const int depth : {32, 30, 24, 16}) {
        EXPECT_EQ(imageFormat(static_cast<std::uint8_t>(depth), blueFirst), QImage::Format_Invalid) << depth;
    }
    for (const int depth : {1, 4, 15}) {
        EXPECT_EQ(imageFormat(static_cast<std::uint8_t>(depth), 0), QImage::Format_Invalid) << depth;
    }
}

TEST(XVisual, OfEightBitsHasCells)
{
    EXPECT_TRUE((XVisual{1, 8, imageFormat(8, 0)}.isOfCells()));
    EXPECT_FALSE((XVisual{1, 24, imageFormat(24, 0xff0000)}.isOfCells()));
}

TEST(XVisual, IsNotFoundOnAScreenThatHasNone)
{
    xcb_screen_t screen{};
    EXPECT_FALSE(findVisual(&screen, 0x21));
}

} // namespace
