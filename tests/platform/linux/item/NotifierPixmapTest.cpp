#include "platform/linux/item/NotifierPixmap.h"

#include <QPixmap>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

NotifierPixmap pixmapOf(QRgb pixel, QImage::Format format)
{
    QImage image(1, 1, format);
    image.setPixelColor(0, 0, QColor::fromRgba(pixel));
    return notifierPixmap(image);
}

QByteArray bytes(std::initializer_list<int> values)
{
    QByteArray result;
    for (const int value : values) {
        result.append(static_cast<char>(value));
    }
    return result;
}

TEST(NotifierPixmap, HasAlphaRedGreenBlueOfEachPixelInThisOrder)
{
    EXPECT_EQ(pixmapOf(0xff102030, QImage::Format_ARGB32), (NotifierPixmap{1, 1, bytes({0xff, 0x10, 0x20, 0x30})}));
    EXPECT_EQ(pixmapOf(0xff102030, QImage::Format_RGB32), (NotifierPixmap{1, 1, bytes({0xff, 0x10, 0x20, 0x30})}));
}

TEST(NotifierPixmap, HasColoursThatAreNotMultipliedByAlpha)
{
    EXPECT_EQ(pixmapOf(0x80ff0000, QImage::Format_ARGB32_Premultiplied).bytes, bytes({0x80, 0xff, 0, 0}));
}

TEST(NotifierPixmap, HasItsRowsFromTheTopWithNothingBetween)
{
    QImage image(3, 2, QImage::Format_RGB888); // Whose rows are filled up to a multiple of four bytes.
    image.fill(Qt::black);
    image.setPixelColor(2, 0, Qt::red);
    image.setPixelColor(0, 1, Qt::blue);
    const NotifierPixmap pixmap = notifierPixmap(image);
    EXPECT_EQ(pixmap.width, 3);
    EXPECT_EQ(pixmap.height, 2);
    ASSERT_EQ(pixmap.bytes.size(), 3 * 2 * 4);
    EXPECT_EQ(pixmap.bytes.mid(qsizetype{2} * 4, 4), bytes({0xff, 0xff, 0, 0}));
    EXPECT_EQ(pixmap.bytes.mid(qsizetype{3} * 4, 4), bytes({0xff, 0, 0, 0xff}));
}

TEST(NotifierPixmaps, AreThereForEverySizeInWhichPanelsDrawItemsOfTheUsualScales)
{
    QPixmap picture(22, 22);
    picture.fill(Qt::red);
    std::vector<int> sides;
    for (const NotifierPixmap &pixmap : notifierPixmaps(QIcon(picture), IconLook::Normal)) {
        EXPECT_EQ(pixmap.width, pixmap.height);
        EXPECT_EQ(pixmap.bytes.size(), pixmap.width * pixmap.height * 4);
        sides.push_back(pixmap.width);
    }
    EXPECT_THAT(sides, testing::IsSupersetOf({16, 22, 24, 32, 44, 48}));
}

TEST(NotifierPixmaps, AreFadedForADisabledItem)
{
    QPixmap picture(22, 22);
    picture.fill(Qt::red);
    const auto centre = [&](IconLook look) {
        const NotifierPixmap pixmap = notifierPixmaps(QIcon(picture), look).value(1);
        return pixmap.bytes.mid((11 * qsizetype{pixmap.width} + 11) * 4, 4);
    };
    EXPECT_EQ(centre(IconLook::Normal), bytes({0xff, 0xff, 0, 0}));
    const QByteArray faded = centre(IconLook::Faded);
    EXPECT_LT(static_cast<uchar>(faded.at(0)), 0xff);
    EXPECT_EQ(faded.mid(1), bytes({0xff, 0, 0}));
}

TEST(NotifierPixmaps, AreNoneWithoutAnIcon)
{
    EXPECT_TRUE(notifierPixmaps(QIcon(), IconLook::Normal).isEmpty());
}

} // namespace
