#include "platform/images/ImageFile.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{

const QString resources = QStringLiteral(KIV_RESOURCES);

QImage picture(const QIcon &icon, int side)
{
    return icon.pixmap(QSize(side, side), 1.0).toImage();
}

TEST(ImageFile, HasAPageForOneAndOneForTwoPixelsToThePoint)
{
    for (const QString &name : {QStringLiteral("statuson"), QStringLiteral("statusoff")}) {
        const QIcon icon = readImageFile(resources + QLatin1Char('/') + name + QStringLiteral(".tiff"));
        EXPECT_EQ(icon.availableSizes(), (QList<QSize>{{22, 22}, {44, 44}})) << qPrintable(name);
        EXPECT_EQ(picture(icon, 22).pixelColor(0, 0).alpha(), 0) << "the corner is transparent";
    }
}

TEST(ImageFile, ShowsAnActiveSessionInColourAndNoneInGrey)
{
    const QColor on = picture(readImageFile(resources + QStringLiteral("/statuson.tiff")), 22).pixelColor(3, 8);
    const QColor off = picture(readImageFile(resources + QStringLiteral("/statusoff.tiff")), 22).pixelColor(2, 8);
    EXPECT_EQ(on.alpha(), 255);
    EXPECT_EQ(off.alpha(), 255);
    EXPECT_GT(on.hsvSaturation(), 180);
    EXPECT_LT(off.hsvSaturation(), 40);
}

TEST(ImageFile, SetsTheActiveSessionOffFromABarOfItsOwnColour)
{
    const QImage on = picture(readImageFile(resources + QStringLiteral("/statuson.tiff")), 22);
    // Above the screen, below it and below its foot.
    for (const QPoint outside : {QPoint(11, 2), QPoint(4, 16), QPoint(11, 20)}) {
        EXPECT_EQ(on.pixelColor(outside).alpha(), 255) << outside.x() << " " << outside.y();
        EXPECT_LT(on.pixelColor(outside).hsvSaturation(), 40) << outside.x() << " " << outside.y();
    }
}

TEST(ImageFile, IsANullIconWhenItCannotBeRead)
{
    QTemporaryDir directory;
    const auto write = [&directory](const QString &name, const QByteArray &bytes) {
        const QString path = directory.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return path;
    };
    EXPECT_TRUE(readImageFile(directory.filePath(QStringLiteral("missing.tiff"))).isNull());
    EXPECT_TRUE(readImageFile(write(QStringLiteral("empty.tiff"), {})).isNull());
    EXPECT_TRUE(readImageFile(write(QStringLiteral("text.tiff"), "no picture at all")).isNull());
    EXPECT_TRUE(readImageFile(write(QStringLiteral("text.png"), "no picture at all")).isNull());
    EXPECT_TRUE(readImageFile(write(QStringLiteral("text"), "no picture at all")).isNull());
    EXPECT_TRUE(readImageFile(directory.path()).isNull());
}

TEST(ImageFile, ReadsWhatQtReads)
{
    QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("a.png"));
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(Qt::green);
    ASSERT_TRUE(image.save(path));
    EXPECT_EQ(picture(readImageFile(path), 8).pixelColor(4, 4), QColor(Qt::green));
}

} // namespace
