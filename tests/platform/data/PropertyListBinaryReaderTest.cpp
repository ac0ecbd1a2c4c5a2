#include "platform/data/PropertyListBinaryReader.h"

#include "platform/data/PropertyListValues.h"
#include "platform/data/UtcTime.h"
#include "tests/platform/data/PropertyListSamples.h"

#include <QDateTime>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using PropertyListBinaryReader::read;

namespace
{

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

QVariant readObject(const char *digits)
{
    return read(binaryList({hex(digits)}));
}

/// A list whose objects all lie within 64 kB, with two-byte references.
QByteArray wideList(const QList<QByteArray> &objects)
{
    QByteArray list = binaryList(objects);
    list[list.size() - 25] = 2;
    return list;
}

QByteArray reference(int index)
{
    return {std::initializer_list<char>{static_cast<char>(index >> 8), static_cast<char>(index)}.begin(), 2};
}

QByteArray arrayOf(const QByteArray &references, int count)
{
    return hex("AF11") + reference(count) + references;
}

QDateTime utc(int year, int month, int day)
{
    return QDateTime(QDate(year, month, day), QTime(0, 0), inUtc);
}

TEST(PropertyListBinaryReader, ReadsEveryTypeInEveryWidth)
{
    const std::pair<const char *, QVariant> objects[] = {
        {"08", false},
        {"09", true},
        {"10FF", qlonglong(255)},
        {"11FFFF", qlonglong(65535)},
        {"12FFFFFFFF", qlonglong(4294967295)},
        {"13FFFFFFFFFFFFFFFF", qlonglong(-1)},
        {"137FFFFFFFFFFFFFFF", std::numeric_limits<qlonglong>::max()},
        {"138000000000000000", std::numeric_limits<qlonglong>::min()},
        {"140000000000000000FFFFFFFFFFFFFFFF", std::numeric_limits<qulonglong>::max()},
        {"1400000000000000008000000000000000", qulonglong(1) << 63},
        {"1400000000000000000000000000000007", qlonglong(7)},
        {"14FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFE", qlonglong(-2)},
        {"14FFFFFFFFFFFFFFFF8000000000000000", std::numeric_limits<qlonglong>::min()},
        {"223FC00000", 1.5},
        {"233FF8000000000000", 1.5},
        {"237FF0000000000000", std::numeric_limits<double>::infinity()},
        {"330000000000000000", utc(2001, 1, 1)},
        {"33C1CD27E440000000", utc(1970, 1, 1)},
        {"333FDFFFFFFFFFFFFF", utc(2001, 1, 1)},
        {"33BFE0000000000000", utc(2001, 1, 1).addSecs(-1)},
        {"40", QByteArray("")},
        {"4300FF41", QByteArray("\x00\xFF\x41", 3)},
        {"4F1003010203", QByteArray("\x01\x02\x03")},
        {"4F130000000000000001AA", QByteArray("\xAA")},
        {"50", QStringLiteral("")},
        {"5361007F", QString(QStringLiteral("a\0\x7F"))},
        {"6200E4D83D", QString(QStringLiteral("\u00E4")) + QChar(0xD83D)},
        {"62D83DDE00", QStringLiteral("\U0001F600")},
        {"60", QStringLiteral("")},
        {"A0", QVariantList()},
        {"B0", QVariantList()},
        {"C0", QVariantList()},
        {"D0", QVariantMap()},
        {"AF1000", QVariantList()},
    };
    for (const auto &[digits, expected] : objects) {
        const QVariant value = readObject(digits);
        EXPECT_EQ(value.typeId(), expected.typeId()) << digits;
        EXPECT_EQ(value, expected) << digits << ' ' << value.toString().toStdString();
    }
    EXPECT_TRUE(std::isnan(readObject("237FF8000000000000").toDouble()));
    EXPECT_FALSE(readObject("50").toString().isNull());
    EXPECT_FALSE(readObject("60").toString().isNull());
}

TEST(PropertyListBinaryReader, BringsDatesBetweenTheYears1And9999)
{
    const QDateTime first(QDate(1, 1, 1), QTime(0, 0), inUtc);
    const QDateTime last(QDate(9999, 12, 31), QTime(23, 59, 59), inUtc);
    EXPECT_EQ(readObject("337FF0000000000000").toDateTime(), last);
    EXPECT_EQ(readObject("337FEFFFFFFFFFFFFF").toDateTime(), last);
    EXPECT_EQ(readObject("33FFF0000000000000").toDateTime(), first);
    EXPECT_EQ(readObject("33FFEFFFFFFFFFFFFF").toDateTime(), first);
    EXPECT_FALSE(readObject("337FF8000000000000").isValid()); // NaN is no time at all.
}

TEST(PropertyListBinaryReader, ReadsNestedAndSharedObjects)
{
    // [ {a: true, b: [true]}, {a: true, b: [true]} ]
    const QVariant value =
        read(binaryList({hex("A20101"), hex("D202030405"), hex("5161"), hex("5162"), hex("09"), hex("A104")}));
    const QVariantMap map{{QStringLiteral("a"), true}, {QStringLiteral("b"), QVariantList{true}}};
    EXPECT_EQ(value, QVariant(QVariantList({map, map})));
}

TEST(PropertyListBinaryReader, ReadsSetsAsArrays)
{
    for (const char *set : {"B20102", "C20102"}) {
        EXPECT_EQ(read(binaryList({hex(set), hex("1001"), hex("1002")})), QVariant(QVariantList({1, 2}))) << set;
    }
}

TEST(PropertyListBinaryReader, LetsTheLaterOfTwoEqualKeysCount)
{
    EXPECT_EQ(read(binaryList({hex("D201020304"), hex("5161"), hex("5161"), hex("08"), hex("09")})),
              QVariant(QVariantMap({{QStringLiteral("a"), true}})));
}

TEST(PropertyListBinaryReader, ReadsReferencesAndOffsetsOfEveryWidth)
{
    for (int referenceSize = 1; referenceSize <= 8; ++referenceSize) {
        for (int offsetSize = 1; offsetSize <= 8; ++offsetSize) {
            QByteArray list = "bplist00\xA1" + QByteArray(referenceSize - 1, '\0') + "\x01\x09";
            const auto table = static_cast<quint64>(list.size());
            list += QByteArray(offsetSize - 1, '\0') + '\x08' + QByteArray(offsetSize - 1, '\0');
            list += static_cast<char>(table - 1);
            list += binaryTrailer(offsetSize, referenceSize, 2, 0, table);
            EXPECT_EQ(read(list), QVariant(QVariantList{true})) << referenceSize << ' ' << offsetSize;
        }
    }
}

TEST(PropertyListBinaryReader, RefusesWhatIsMalformed)
{
    const char *objects[] = {
        "00",                                 // Null.
        "01",                                 //
        "0F",                                 // Fill.
        "10",                                 // An integer without its bytes is followed by the offset table.
        "13FFFFFF",                           //
        "1400000000000000010000000000000000", // 2^64.
        "14FFFFFFFFFFFFFFFF7FFFFFFFFFFFFFFF", // -2^63 - 1.
        "15",                                 //
        "1F",                                 //
        "20FF",                               // Reals of one, two and sixteen bytes.
        "21FFFF",                             //
        "2400000000000000000000000000000000", //
        "3200000000",                         // A date of four bytes.
        "3300",                               //
        "4200",                               //
        "4F",                                 //
        "4F0801",                             // A count that is no integer.
        "4F2200000001FF",                     //
        "4F13FFFFFFFFFFFFFFFF00",             // Negative, or huge.
        "4F14000000000000000000000000000000010000",
        "5180",                   // Not ASCII.
        "5261",                   //
        "6161",                   //
        "6F13800000000000000061", // Twice that overflows.
        "7161",                   //
        "8001",                   // UID.
        "90",                     //
        "A1",                     //
        "A101",                   // A reference to no object.
        "A1FF",                   //
        "AF13FFFFFFFFFFFFFFFF00", //
        "AF13200000000000000000", //
        "D1",                     //
        "D100",                   //
        "DF13800000000000000000", //
        "E0",                     //
        "F0",                     //
    };
    for (const char *digits : objects) {
        EXPECT_FALSE(readObject(digits).isValid()) << digits;
    }
    EXPECT_FALSE(read(binaryList({hex("D10102"), hex("1001"), hex("09")})).isValid()) << "a key that is a number";
    EXPECT_FALSE(read(binaryList({hex("D10102"), hex("4161"), hex("09")})).isValid()) << "a key that is data";
    EXPECT_FALSE(read(binaryList({hex("D10102"), hex("5161"), hex("00")})).isValid()) << "a value that is null";
}

TEST(PropertyListBinaryReader, RefusesAWrongFrame)
{
    const QByteArray good = binaryList({hex("09")});
    ASSERT_EQ(read(good), QVariant(true));
    const qsizetype table = good.size() - 34;

    struct Frame {
        int offsetSize;
        int referenceSize;
        quint64 objects;
        quint64 top;
        quint64 table;
    };
    constexpr quint64 huge = std::numeric_limits<quint64>::max();
    const Frame frames[] = {
        {0, 1, 1, 0, 9},
        {9, 1, 1, 0, 9},
        {255, 1, 1, 0, 9},
        {2, 0, 1, 0, 9},
        {2, 9, 1, 0, 9},
        {2, 1, 0, 0, 9},
        {2, 1, 2, 0, 9},
        {2, 1, huge, 0, 9},
        {2, 1, 1, 1, 9},
        {2, 1, 1, huge, 9},
        {8, 1, huge / 8 + 2, 0, 9},
        {2, 1, 1, 0, 0},
        {2, 1, 1, 0, 8},
        {2, 1, 1, 0, 10},
        {2, 1, 1, 0, huge},
        {2, 1, 1, 0, huge - 1},
        {2, 1, huge / 2 + 1, 0, 9},
        {2, 1, 1, 0, 43},
    };
    ASSERT_EQ(table, 9);
    for (const auto &[offsetSize, referenceSize, count, top, start] : frames) {
        const QByteArray list = good.chopped(32) + binaryTrailer(offsetSize, referenceSize, count, top, start);
        EXPECT_FALSE(read(list).isValid())
            << offsetSize << ' ' << referenceSize << ' ' << count << ' ' << top << ' ' << start;
    }
    for (const char offset : {0, 7, 9, 10, 127}) {
        QByteArray list = good;
        list[table + 1] = offset;
        EXPECT_FALSE(read(list).isValid()) << int(offset);
    }
    EXPECT_FALSE(read("bplist00").isValid());
    EXPECT_FALSE(read("bplist00" + binaryTrailer(1, 1, 1, 0, 8)).isValid());
    EXPECT_FALSE(read("bplist00" + QByteArray(32, '\xFF')).isValid());
}

TEST(PropertyListBinaryReader, RefusesCycles)
{
    EXPECT_FALSE(read(binaryList({hex("A100")})).isValid());
    EXPECT_FALSE(read(binaryList({hex("A101"), hex("A100")})).isValid());
    EXPECT_FALSE(read(binaryList({hex("A2010109"), hex("A102"), hex("A103"), hex("A101")})).isValid());
    EXPECT_FALSE(read(binaryList({hex("D10100"), hex("5161")})).isValid());
    EXPECT_FALSE(read(binaryList({hex("D10001"), hex("09")})).isValid());
}

TEST(PropertyListBinaryReader, RefusesAFewHundredBytesThatExpandWithoutEnd)
{
    QList<QByteArray> objects;
    for (int i = 0; i < 30; ++i) {
        objects.append(hex("AA") + QByteArray(10, static_cast<char>(i + 1)));
    }
    EXPECT_FALSE(read(binaryList(objects + QList<QByteArray>{hex("09")})).isValid());

    QList<QByteArray> maps;
    for (char i = 0; i < 100; ++i) {
        maps.append(hex("D26566") + QByteArray(2, static_cast<char>(i + 1)));
    }
    EXPECT_FALSE(read(binaryList(maps + QList<QByteArray>{hex("09"), hex("5161"), hex("5162")})).isValid());
}

TEST(PropertyListBinaryReader, TakesAMillionValuesAfterExpansion)
{
    const auto list = [](int leaves) {
        // 999 times an array of 999 values, and `leaves` more.
        return wideList({arrayOf(reference(1).repeated(999) + reference(2).repeated(leaves), 999 + leaves),
                         arrayOf(reference(2).repeated(999), 999), hex("09")});
    };
    EXPECT_EQ(read(list(999)).toList().size(), 1998);
    EXPECT_FALSE(read(list(1000)).isValid());
}

TEST(PropertyListBinaryReader, TakesFiveHundredAndTwelveLevels)
{
    const auto nested = [](int levels) {
        QList<QByteArray> objects;
        for (int i = 1; i <= levels; ++i) {
            objects.append(i % 2 ? hex("A1") + reference(i) : hex("D1") + reference(levels + 1) + reference(i));
        }
        return wideList(objects + QList<QByteArray>{hex("09"), hex("5161")});
    };
    EXPECT_TRUE(read(nested(512)).isValid());
    EXPECT_FALSE(read(nested(513)).isValid());
    EXPECT_FALSE(read(nested(6000)).isValid());
}

TEST(PropertyListBinaryReader, CountsTheLevelsOfASharedObjectWhereItIsDeepest)
{
    // [ chain of 256 arrays, `above` arrays around the same chain ]
    const auto list = [](int above) {
        QList<QByteArray> objects{arrayOf(reference(1) + reference(257), 2)};
        for (int i = 1; i <= 256; ++i) {
            objects.append(i < 256 ? hex("A1") + reference(i + 1) : hex("A0"));
        }
        for (int i = 1; i <= above; ++i) {
            objects.append(hex("A1") + reference(i < above ? 257 + i : 1));
        }
        return wideList(objects);
    };
    EXPECT_TRUE(read(list(255)).isValid());
    EXPECT_FALSE(read(list(256)).isValid());
}

TEST(PropertyListBinaryReader, RefusesHugeKeysThatAreSharedByMany)
{
    const auto list = [](int dictionaries) {
        const QByteArray key = hex("5F116000") + QByteArray(0x6000, 'k');
        QList<QByteArray> objects{arrayOf(QByteArray(), dictionaries)};
        for (int i = 0; i < dictionaries; ++i) {
            objects[0] += reference(i + 1);
            objects.append(hex("D1") + reference(dictionaries + 1) + reference(dictionaries + 2));
        }
        return wideList(objects + QList<QByteArray>{key, hex("09")});
    };
    EXPECT_TRUE(read(list(16 * 1024 * 1024 / 0x6000)).isValid());
    EXPECT_FALSE(read(list(16 * 1024 * 1024 / 0x6000 + 1)).isValid());
}

TEST(PropertyListBinaryReader, RefusesToCopyTheSameBytesForManyObjects)
{
    const auto list = [](unsigned copies) {
        const QByteArray text = hex("5F111000") + QByteArray(0x1000, 't');
        const QByteArray array = hex("AF10") + static_cast<char>(copies);
        QByteArray references;
        QByteArray offsets = hex("0008");
        const unsigned place = 8 + 3 + copies;
        for (unsigned i = 1; i <= copies; ++i) {
            references += static_cast<char>(i);
            offsets += static_cast<char>(place >> 8);
            offsets += static_cast<char>(place & 0xFF);
        }
        const QByteArray objects = "bplist00" + array + references + text;
        return objects + offsets + binaryTrailer(2, 1, copies + 1, 0, static_cast<quint64>(objects.size()));
    };
    EXPECT_EQ(read(list(1)), QVariant(QVariantList{QString(0x1000, u't')}));
    EXPECT_FALSE(read(list(2)).isValid());
    EXPECT_FALSE(read(list(250)).isValid());
}

TEST(PropertyListBinaryReader, RecognisesOnlyItsOwnVersion)
{
    EXPECT_TRUE(PropertyListBinaryReader::recognises("bplist00"));
    for (const char *bytes : {"", "bplist0", "bplist01", "bplist15", "Bplist00", " bplist00", "<plist>"}) {
        EXPECT_FALSE(PropertyListBinaryReader::recognises(bytes)) << bytes;
    }
}

} // namespace
