#include "platform/images/ImageFile.h"

#include <QDir>
#include <QImage>

#include <gtest/gtest.h>

#include <cstdlib>

// The system draws the shape of an image alone, in a colour that goes with the menu bar.

namespace
{

QImage statusImage(const char *name, int side)
{
    const QIcon icon = readImageFile(QDir(QStringLiteral(KIV_MAC_RESOURCES)).filePath(QLatin1String(name)));
    return icon.pixmap(side).toImage().convertToFormat(QImage::Format_ARGB32);
}

/// How many of its pixels satisfy that.
template <typename Condition>
int pixels(const QImage &image, Condition &&condition)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += condition(image.pixelColor(x, y), QPoint(x, y));
        }
    }
    return count;
}

class MacStatusImages : public testing::TestWithParam<int>
{
protected:
    const int side = GetParam();
    const QImage on = statusImage("statuson.tiff", side);
    const QImage off = statusImage("statusoff.tiff", side);
};

} // namespace

TEST_P(MacStatusImages, AreBlackAndClear)
{
    for (const QImage &image : {on, off}) {
        ASSERT_EQ(image.size(), QSize(side, side));
        const auto isColoured = [](QColor colour, QPoint) { return colour.alpha() > 0 && colour.rgb() != 0xFF000000; };
        EXPECT_EQ(pixels(image, isColoured), 0);
        EXPECT_GT(pixels(image, [](QColor colour, QPoint) { return colour.alpha() == 255; }), side * side / 4);
    }
}

TEST_P(MacStatusImages, AreToldApartByTheirShapesAlone)
{
    ASSERT_EQ(on.size(), off.size());
    const int different = pixels(on, [this](QColor colour, QPoint place) {
        return std::abs(colour.alpha() - off.pixelColor(place).alpha()) > 128;
    });
    EXPECT_GT(different, side * side / 5);
}

INSTANTIATE_TEST_SUITE_P(AtBothScales, MacStatusImages, testing::Values(22, 44));
