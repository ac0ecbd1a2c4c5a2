#include "platform/images/IcnsReader.h"

#include <QBuffer>
#include <QColor>
#include <QFile>
#include <QtEndian>

#include <gtest/gtest.h>

namespace
{

QByteArray number(std::uint32_t value)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray png(QSize size, const QColor &colour = Qt::red)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(colour);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    EXPECT_TRUE(buffer.open(QIODevice::WriteOnly) && image.save(&buffer, "PNG"));
    return bytes;
}

QByteArray block(const QByteArray &type, const QByteArray &contents)
{
    return type + number(static_cast<std::uint32_t>(contents.size()) + 8) + contents;
}

QByteArray icns(const QByteArrayList &pictures)
{
    QByteArray blocks;
    for (const QByteArray &picture : pictures) {
        blocks += block("ic07", picture);
    }
    return block("icns", blocks);
}

TEST(IcnsReader, ReadsTheSmallestPictureThatIsLargeEnough)
{
    const QByteArray file = icns({png({128, 128}), png({16, 16}), png({64, 64})});
    const std::pair<int, int> rows[] = {{1, 16},  {16, 16},  {17, 64},   {50, 64},
                                        {64, 64}, {65, 128}, {128, 128}, {500, 128}};
    for (const auto &[wanted, side] : rows) {
        EXPECT_EQ(readIcns(file, wanted).size(), QSize(side, side)) << wanted;
    }
    EXPECT_EQ(readIcns(file, 16).pixelColor(8, 8), QColor(Qt::red));
}

TEST(IcnsReader, PassesOverWhatIsNoPicture)
{
    const QByteArray table = block("TOC ", "anything");
    const QByteArray old = block("is32", QByteArray(700, '\1'));
    const QByteArray file = block("icns", table + old + block("ic12", png({64, 64})) + block("info", {}));
    EXPECT_EQ(readIcns(file, 16).size(), QSize(64, 64));
    EXPECT_TRUE(readIcns(block("icns", table + old), 16).isNull());
    EXPECT_TRUE(readIcns(icns({png({64, 32})}), 16).isNull()) << "not square";
    EXPECT_TRUE(readIcns(icns({png({1025, 1025})}), 16).isNull()) << "too large";
    EXPECT_EQ(readIcns(icns({png({1024, 1024})}), 16).size(), QSize(1024, 1024));
}

TEST(IcnsReader, ReadsNothingOfAFileThatIsCutShort)
{
    const QByteArray file = icns({png({16, 16}), png({32, 32})});
    for (qsizetype size = 0; size < file.size(); ++size) {
        EXPECT_TRUE(readIcns(file.first(size), 16).isNull()) << size;
    }
    // The container's own length agrees, so that it is a block or the picture that is cut.
    for (qsizetype size = 8; size < file.size(); ++size) {
        const QImage image = readIcns(block("icns", file.mid(8, size - 8)), 32);
        EXPECT_TRUE(image.isNull() || image.width() == 16) << size;
    }
}

TEST(IcnsReader, BearsLengthsThatLie)
{
    const QByteArray picture = png({16, 16});
    for (const std::uint32_t length : {0U, 1U, 7U, 8U, 9U, 0x7fffffffU, 0x80000000U, 0xffffffffU}) {
        EXPECT_TRUE(readIcns(block("icns", "ic07" + number(length) + picture), 16).isNull()) << length;
        EXPECT_TRUE(readIcns("icns" + number(length) + block("ic07", picture).first(8), 16).isNull()) << length;
    }
}

TEST(IcnsReader, ReadsTheIconsOfTheProgram)
{
    for (const char *name : {"update", "warning", "information", "kivmenua"}) {
        QFile file(QStringLiteral(KIV_RESOURCES "/%1.icns").arg(QLatin1String(name)));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        const QByteArray bytes = file.readAll();
        for (const int side : {16, 32, 64, 128, 256, 512}) {
            const QImage image = readIcns(bytes, side);
            EXPECT_EQ(image.size(), QSize(side, side)) << name;
            EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << name;
            EXPECT_GT(image.pixelColor(side / 2, side * 2 / 5).alpha(), 200) << name;
        }
    }
}

} // namespace
