#include "platform/images/IconDrawing.h"

#include <QPixmap>

#include <gtest/gtest.h>

namespace
{

QPixmap filled(int side, const QColor &colour)
{
    QPixmap pixmap(side, side);
    pixmap.fill(colour);
    return pixmap;
}

TEST(IconDrawing, KeepsAPageThatNearlyFitsAndScalesAnyOther)
{
    const QList<QSize> pages = {{22, 22}, {44, 44}};
    const std::pair<int, int> rows[] = {{16, 16}, {21, 21}, {22, 22}, {24, 22}, {25, 22}, {26, 26},
                                        {32, 32}, {44, 44}, {48, 44}, {50, 44}, {64, 64}};
    for (const auto &[side, drawn] : rows) {
        EXPECT_EQ(drawnSide(side, pages), drawn) << side;
    }
    EXPECT_EQ(drawnSide(22, {}), 22);
}

TEST(IconDrawing, CentresThePageOfTheRightSize)
{
    QIcon icon(filled(22, Qt::red));
    icon.addPixmap(filled(44, Qt::blue));
    const QImage small = drawIcon(icon, 24, IconLook::Normal);
    EXPECT_EQ(small.size(), QSize(24, 24));
    EXPECT_EQ(small.pixelColor(0, 12).alpha(), 0);
    EXPECT_EQ(small.pixelColor(1, 12), QColor(Qt::red));
    EXPECT_EQ(small.pixelColor(22, 12), QColor(Qt::red));
    EXPECT_EQ(small.pixelColor(23, 12).alpha(), 0);
    EXPECT_EQ(drawIcon(icon, 44, IconLook::Normal).pixelColor(0, 0), QColor(Qt::blue));
    EXPECT_EQ(drawIcon(icon, 64, IconLook::Normal).pixelColor(32, 32), QColor(Qt::blue)) << "made larger";
    EXPECT_EQ(drawIcon(icon, 64, IconLook::Normal).pixelColor(1, 1), QColor(Qt::blue)) << "to the edge";
}

TEST(IconDrawing, FadesADisabledIcon)
{
    const QIcon icon(filled(22, Qt::red));
    EXPECT_NEAR(drawIcon(icon, 22, IconLook::Faded).pixelColor(11, 11).alpha(), 128, 1);
    const QIcon faded = iconWithLook(icon, IconLook::Faded);
    EXPECT_EQ(faded.availableSizes(), QList<QSize>{QSize(22, 22)});
    EXPECT_NEAR(faded.pixmap(QSize(22, 22), 1.0).toImage().pixelColor(11, 11).alpha(), 128, 1);
    EXPECT_EQ(iconWithLook(icon, IconLook::Normal).cacheKey(), icon.cacheKey());
}

TEST(IconDrawing, DrawsNothingForANullIcon)
{
    EXPECT_EQ(drawIcon(QIcon(), 22, IconLook::Normal).pixelColor(11, 11).alpha(), 0);
    EXPECT_TRUE(iconWithLook(QIcon(), IconLook::Faded).isNull());
}

} // namespace
