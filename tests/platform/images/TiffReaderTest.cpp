#include "platform/images/TiffReader.h"

#include <QtEndian>

#include <gtest/gtest.h>

#include <map>
#include <vector>

namespace
{

/// Makes a TIFF file by hand, in either byte order, out of pages that may be as wrong as a test wants them.
class TiffMaker final
{
public:
    using Tags = std::map<std::uint16_t, std::vector<std::uint32_t>>;

    enum class Order { Little, Big };

    explicit TiffMaker(Order order)
        : m_order(order)
        , bytes(order == Order::Little ? "II" : "MM", 2)
    {
        put16(42);
        m_link = bytes.size();
        put32(0);
    }

    /// A page of 2 x `height` pixels with one strip for each of `strips`.
    void addPage(std::uint32_t height, const QByteArrayList &strips, const Tags &other = {})
    {
        Tags tags = {{256, {2}}, {257, {height}}, {258, {8, 8, 8, 8}}, {259, {1}}, {262, {2}}, {277, {4}}, {338, {2}}};
        for (const QByteArray &strip : strips) {
            tags[273].push_back(static_cast<std::uint32_t>(bytes.size()));
            tags[279].push_back(static_cast<std::uint32_t>(strip.size()));
            bytes += strip;
        }
        tags[278] = {(height + static_cast<std::uint32_t>(strips.size()) - 1) /
                     static_cast<std::uint32_t>(strips.size())};
        for (const auto &[tag, values] : other) {
            tags[tag] = values;
            if (values.empty()) {
                tags.erase(tag);
            }
        }
        std::map<std::uint16_t, qsizetype> places;
        for (const auto &[tag, values] : tags) {
            if (values.size() > 1) {
                places[tag] = bytes.size();
                for (const std::uint32_t value : values) {
                    put32(value);
                }
            }
        }
        directory = static_cast<std::uint32_t>(bytes.size());
        patch32(m_link, directory);
        put16(static_cast<std::uint16_t>(tags.size()));
        for (const auto &[tag, values] : tags) {
            put16(tag);
            put16(4);
            put32(static_cast<std::uint32_t>(values.size()));
            put32(values.size() > 1 ? static_cast<std::uint32_t>(places[tag]) : values[0]);
        }
        m_link = bytes.size();
        put32(0);
    }

    /// Lets the last page name that directory as the next page's.
    void linkTo(std::uint32_t next) { patch32(m_link, next); }

private:
    void put16(std::uint16_t value)
    {
        char out[2];
        m_order == Order::Little ? qToLittleEndian(value, out) : qToBigEndian(value, out);
        bytes.append(out, 2);
    }

    void put32(std::uint32_t value)
    {
        bytes.append(4, '\0');
        patch32(bytes.size() - 4, value);
    }

    void patch32(qsizetype at, std::uint32_t value)
    {
        m_order == Order::Little ? qToLittleEndian(value, bytes.data() + at) : qToBigEndian(value, bytes.data() + at);
    }

    const Order m_order;
    qsizetype m_link = 0;

public:
    QByteArray bytes;
    std::uint32_t directory = 0; ///< Of the last page.
};

const QByteArray redThenHalfBlue = QByteArray::fromHex("ff0000ff0000ff80");
const QByteArray greenThenClear = QByteArray::fromHex("00ff00ff00000000");

void expectTheTwoRows(const QList<QImage> &pages)
{
    ASSERT_EQ(pages.size(), 1);
    ASSERT_EQ(pages[0].size(), QSize(2, 2));
    EXPECT_EQ(pages[0].pixelColor(0, 0), QColor(255, 0, 0, 255));
    EXPECT_EQ(pages[0].pixelColor(1, 0), QColor(0, 0, 255, 128));
    EXPECT_EQ(pages[0].pixelColor(0, 1), QColor(0, 255, 0, 255));
    EXPECT_EQ(pages[0].pixelColor(1, 1).alpha(), 0);
}

class TiffReader : public testing::TestWithParam<TiffMaker::Order>
{
protected:
    TiffMaker tiff{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(BothByteOrders, TiffReader, testing::Values(TiffMaker::Order::Little, TiffMaker::Order::Big));

TEST_P(TiffReader, ReadsOneStrip)
{
    tiff.addPage(2, {redThenHalfBlue + greenThenClear});
    expectTheTwoRows(readTiff(tiff.bytes));
}

TEST_P(TiffReader, ReadsSeveralStrips)
{
    tiff.addPage(2, {redThenHalfBlue, greenThenClear});
    expectTheTwoRows(readTiff(tiff.bytes));
}

TEST_P(TiffReader, ReadsPackBits)
{
    // ff, 00 twice; 3 as they are; 80 is nothing; ff, 80 as they are. Then the second row as it is.
    const QByteArray first = QByteArray::fromHex("00ff"
                                                 "ff00"
                                                 "02ff0000"
                                                 "80"
                                                 "01ff80");
    const QByteArray second = QByteArray::fromHex("0300ff00ff"
                                                  "fd00");
    tiff.addPage(2, {first, second}, {{259, {32773}}});
    expectTheTwoRows(readTiff(tiff.bytes));
}

TEST_P(TiffReader, ReadsAllPagesInTheirOrder)
{
    tiff.addPage(1, {redThenHalfBlue});
    tiff.addPage(2, {redThenHalfBlue + greenThenClear});
    const QList<QImage> pages = readTiff(tiff.bytes);
    ASSERT_EQ(pages.size(), 2);
    EXPECT_EQ(pages[0].height(), 1);
    EXPECT_EQ(pages[1].height(), 2);
}

TEST_P(TiffReader, KnowsColoursThatAreMultipliedByTheirAlpha)
{
    tiff.addPage(1, {QByteArray::fromHex("ff0000ff00008080")}, {{338, {1}}});
    const QList<QImage> pages = readTiff(tiff.bytes);
    ASSERT_EQ(pages.size(), 1);
    EXPECT_EQ(pages[0].pixelColor(1, 0), QColor(0, 0, 255, 128));
}

TEST_P(TiffReader, ReadsNothingOfAnotherKind)
{
    const TiffMaker::Tags wrong[] = {
        {{256, {0}}},
        {{256, {1025}}},
        {{257, {0}}},
        {{257, {3}}},
        {{256, {}}},
        {{258, {8, 8, 8}}},
        {{258, {16, 16, 16, 16}}},
        {{259, {5}}},
        {{262, {5}}},
        {{277, {3}}},
        {{278, {0}}},
        {{273, {}}},
        {{279, {}}},
        {{273, {4000000}}},
        {{279, {0xffffffff}}},
        {{273, {0xffffffff}}},
        {{279, {7}}},
        {{284, {2}}},
        {{317, {2}}},
        {{274, {3}}},
        {{273, {8, 8}}},
    };
    for (const TiffMaker::Tags &tags : wrong) {
        TiffMaker made(GetParam());
        made.addPage(1, {redThenHalfBlue}, tags);
        EXPECT_TRUE(readTiff(made.bytes).isEmpty()) << tags.begin()->first;
    }
}

TEST_P(TiffReader, ReadsNothingOfPackedBytesThatDoNotFillTheStripOrOverrunIt)
{
    const char *const wrong[] = {"",   "07ff0000ff", "03ff0000ff",           "03ff0000ff07",
                                 "f9", "f700",       "08ff0000ff0000ff8000", "80"};
    for (const char *packed : wrong) {
        TiffMaker made(GetParam());
        made.addPage(1, {QByteArray::fromHex(packed)}, {{259, {32773}}});
        EXPECT_TRUE(readTiff(made.bytes).isEmpty()) << packed;
    }
}

TEST_P(TiffReader, EndsOnAChainOfPagesThatIsARing)
{
    tiff.addPage(1, {redThenHalfBlue});
    tiff.linkTo(tiff.directory);
    EXPECT_TRUE(readTiff(tiff.bytes).isEmpty());
}

TEST_P(TiffReader, ReadsNothingOfAFileCutShort)
{
    tiff.addPage(2, {redThenHalfBlue, greenThenClear});
    for (qsizetype length = 0; length < tiff.bytes.size(); ++length) {
        EXPECT_TRUE(readTiff(tiff.bytes.left(length)).isEmpty()) << length;
    }
}

TEST_P(TiffReader, SurvivesEverySingleByteChanged)
{
    tiff.addPage(2, {redThenHalfBlue, greenThenClear}, {{259, {32773}}});
    for (qsizetype at = 0; at < tiff.bytes.size(); ++at) {
        for (const int value : {0x00, 0x01, 0x7f, 0x80, 0xff}) {
            QByteArray changed = tiff.bytes;
            changed[at] = static_cast<char>(value);
            EXPECT_LE(readTiff(changed).size(), 16);
        }
    }
}

} // namespace
