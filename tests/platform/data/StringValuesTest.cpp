#include "platform/data/StringValues.h"

#include <QDateTime>
#include <QLocale>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

constexpr std::int32_t minInt = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t maxInt = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t minLong = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t maxLong = std::numeric_limits<std::int64_t>::max();
constexpr float infinity = std::numeric_limits<float>::infinity();

struct Integer {
    const char16_t *text;
    std::int64_t value;
};

constexpr Integer integers[] = {
    {u"", 0},
    {u"0", 0},
    {u"42", 42},
    {u"-42", -42},
    {u"+42", 42},
    {u"007", 7},
    {u"  \t\r\n 42", 42},
    {u"\u00A0\u2003\u30007", 7},
    {u"42 apples", 42},
    {u"12.9", 12},
    {u"1e3", 1},
    {u"1,000", 1},
    {u"1 000", 1},
    {u"0x10", 0},
    {u"x10", 0},
    {u"nan", 0},
    {u"inf", 0},
    {u"YES", 0},
    {u"-", 0},
    {u"--5", 0},
    {u"+-5", 0},
    {u"- 5", 0},
    {u".5", 0},
    {u"\u0664\u0662", 0},
    {u"4\u0662", 4},
    {u"\uFF14", 0},
    {u"9223372036854775807", maxLong},
    {u"9223372036854775808", maxLong},
    {u"-9223372036854775808", minLong},
    {u"-9223372036854775809", minLong},
    {u"18446744073709551616", maxLong},
    {u"18446744073709551617", maxLong},
    {u"-99999999999999999999999999999999999999", minLong},
    {u"000000000000000000000000000000000000005", 5},
};

struct Float {
    const char16_t *text;
    float value;
};

constexpr Float floats[] = {
    {u"", 0},
    {u"320", 320.0F},
    {u"320.5", 320.5F},
    {u"-0.25", -0.25F},
    {u"+.5", 0.5F},
    {u"5.", 5},
    {u".", 0},
    {u"-.", 0},
    {u" \n2.5px", 2.5F},
    {u"1e3", 1000},
    {u"1E+3", 1000},
    {u"25e-2", 0.25F},
    {u"1e", 1},
    {u"1e+", 1},
    {u"1ex", 1},
    {u"1.5.5", 1.5F},
    {u"1,5", 1},
    {u"0x1p4", 0},
    {u"nan", 0},
    {u"inf", 0},
    {u"Infinity", 0},
    {u"e5", 0},
    {u"1e39", infinity},
    {u"-1e39", -infinity},
    {u"1e999", infinity},
    {u"1e-999", 0},
    {u"-1e9999999999999999999", -infinity},
    {u"1e-9999999999999999999", 0},
    {u"\u0663.5", 0},
    {u"3\u066B5", 3},
    {u"16777217", 16777216},
};

struct Boolean {
    const char16_t *text;
    bool value;
};

constexpr Boolean booleans[] = {
    {u"", false},      {u"0", false},   {u"1", true},       {u"9", true},       {u"YES", true},
    {u"yes", true},    {u"NO", false},  {u"no", false},     {u"true", true},    {u"T", true},
    {u"false", false}, {u"F", false},   {u"  \tYes", true}, {u"-1", true},      {u"+1", true},
    {u"-0", false},    {u"000", false}, {u"0001", true},    {u"-00Y", true},    {u"0.5", false},
    {u"on", false},    {u"x1", false},  {u"--1", false},    {u"\u0661", false}, {u"0 1", false},
};

TEST(LongLongValue, ReadsTheDigitsAtTheFrontAndSaturates)
{
    for (const auto &[text, value] : integers) {
        EXPECT_EQ(StringValues::longLongValue(QString::fromUtf16(text)), value)
            << QString::fromUtf16(text).toStdString();
    }
}

TEST(IntValue, ReadsTheDigitsAtTheFrontAndSaturatesAtThirtyTwoBits)
{
    for (const auto &[text, value] : integers) {
        const std::int64_t expected = value > maxInt ? maxInt : value < minInt ? minInt : value;
        EXPECT_EQ(StringValues::intValue(QString::fromUtf16(text)), expected) << QString::fromUtf16(text).toStdString();
    }
    EXPECT_EQ(StringValues::intValue(QStringLiteral("2147483647")), maxInt);
    EXPECT_EQ(StringValues::intValue(QStringLiteral("2147483648")), maxInt);
    EXPECT_EQ(StringValues::intValue(QStringLiteral("-2147483648")), minInt);
    EXPECT_EQ(StringValues::intValue(QStringLiteral("-2147483649")), minInt);
}

TEST(IntValue, TakesAMillionDigits)
{
    EXPECT_EQ(StringValues::intValue(QString(1'000'000, u'9')), maxInt);
    EXPECT_EQ(StringValues::intValue(QString(1'000'000, u'0') + u'7'), 7);
}

TEST(FloatValue, ReadsPointAndExponentAndSaturatesToInfinity)
{
    for (const auto &[text, value] : floats) {
        EXPECT_EQ(StringValues::floatValue(QString::fromUtf16(text)), value) << QString::fromUtf16(text).toStdString();
    }
}

TEST(FloatValue, TakesAMillionDigits)
{
    EXPECT_EQ(StringValues::floatValue(QString(1'000'000, u'9')), infinity);
    EXPECT_EQ(StringValues::floatValue(u'.' + QString(1'000'000, u'0') + u'1'), 0);
    EXPECT_EQ(StringValues::floatValue(QString(1'000'000, u'0') + QStringLiteral("2.5")), 2.5F);
}

TEST(FloatValue, DoesNotDependOnTheLocale)
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(StringValues::floatValue(QStringLiteral("1.5")), 1.5F);
    EXPECT_EQ(StringValues::floatValue(QStringLiteral("1,5")), 1.0F);
    QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
    EXPECT_EQ(StringValues::floatValue(QStringLiteral("1.5")), 1.5F);
    EXPECT_EQ(StringValues::intValue(QStringLiteral("15")), 15);
    QLocale::setDefault(QLocale::c());
}

TEST(BoolValue, LooksAtTheFirstCharacterAfterSpaceSignAndZeros)
{
    for (const auto &[text, value] : booleans) {
        EXPECT_EQ(StringValues::boolValue(QString::fromUtf16(text)), value) << QString::fromUtf16(text).toStdString();
    }
}

TEST(NullString, IsZeroAndFalse)
{
    EXPECT_EQ(StringValues::intValue(QString()), 0);
    EXPECT_EQ(StringValues::longLongValue(QString()), 0);
    EXPECT_EQ(StringValues::floatValue(QString()), 0);
    EXPECT_FALSE(StringValues::boolValue(QString()));
}

struct Value {
    QVariant value;
    std::int32_t asInt;
    float asFloat;
    bool asBool;
};

TEST(PropertyListValue, ConvertsFromEveryType)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Value values[] = {
        {QVariant(), 0, 0, false},
        {QStringLiteral(" 3.5"), 3, 3.5F, true},
        {QStringLiteral("YES"), 0, 0, true},
        {true, 1, 1, true},
        {false, 0, 0, false},
        {3, 3, 3, true},
        {-3, -3, -3, true},
        {3U, 3, 3, true},
        {qlonglong(0), 0, 0, false},
        {qlonglong(5'000'000'000), maxInt, 5e9F, true},
        {qlonglong(-5'000'000'000), minInt, -5e9F, true},
        {qlonglong(0x100000000), maxInt, 4294967296.0F, true},
        {std::numeric_limits<qulonglong>::max(), maxInt, 18446744073709551616.0F, true},
        {2.9, 2, 2.9F, true},
        {-2.9, -2, -2.9F, true},
        {0.5, 0, 0.5F, true},
        {-0.0, 0, 0, false},
        {2.5F, 2, 2.5F, true},
        {1e300, maxInt, infinity, true},
        {-1e300, minInt, -infinity, true},
        {std::numeric_limits<double>::infinity(), maxInt, infinity, true},
        {-std::numeric_limits<double>::infinity(), minInt, -infinity, true},
        {QDateTime::currentDateTimeUtc(), 0, 0, false},
        {QByteArray("5"), 0, 0, false},
        {QVariantList{5}, 0, 0, false},
        {QVariantMap{{QStringLiteral("5"), 5}}, 0, 0, false},
    };
    for (const auto &[value, asInt, asFloat, asBool] : values) {
        SCOPED_TRACE(std::string(value.typeName() ? value.typeName() : "nil") + ' ' + value.toString().toStdString());
        EXPECT_EQ(StringValues::intValue(value), asInt);
        EXPECT_EQ(StringValues::floatValue(value), asFloat);
        EXPECT_EQ(StringValues::boolValue(value), asBool);
    }
    EXPECT_EQ(StringValues::intValue(QVariant(nan)), 0);
    EXPECT_TRUE(std::isnan(StringValues::floatValue(QVariant(nan))));
    EXPECT_TRUE(StringValues::boolValue(QVariant(nan)));
}

TEST(StringValues, TakesTheTextOfAStringOrNumber)
{
    const std::pair<QVariant, const char *> values[] = {
        {QStringLiteral(" 3.2 "), " 3.2 "},
        {7, "7"},
        {7U, "7"},
        {qlonglong(-5'000'000'000), "-5000000000"},
        {std::numeric_limits<qulonglong>::max(), "18446744073709551615"},
        {3.2, "3.2"},
        {2.5F, "2.5"},
    };
    for (const auto &[value, text] : values) {
        EXPECT_EQ(StringValues::stringValue(value), QLatin1String(text)) << value.typeName();
    }
    EXPECT_FALSE(StringValues::stringValue(QStringLiteral("")).isNull());
    for (const QVariant &value : {QVariant(), QVariant(true), QVariant(QByteArray("5")), QVariant(QVariantList{5}),
                                  QVariant(QDateTime::currentDateTimeUtc())}) {
        EXPECT_TRUE(StringValues::stringValue(value).isNull()) << value.typeName();
    }
}

TEST(StringValues, TakesTextFromUtf8AndNothingFromOtherBytes)
{
    EXPECT_EQ(StringValues::fromUtf8("Gr\xC3\xBC\xC3\x9F"), QStringLiteral("Gr\u00FC\u00DF"));
    EXPECT_EQ(StringValues::fromUtf8(QByteArrayView("a\0b", 3)), QString::fromLatin1("a\0b", 3));
    EXPECT_EQ(StringValues::fromUtf8("\xEF\xBB\xBFx"), QStringLiteral("\uFEFFx"));
    EXPECT_TRUE(StringValues::fromUtf8("").isEmpty());
    EXPECT_FALSE(StringValues::fromUtf8("").isNull());
    for (const char *bytes : {"\xFF", "Gr\xFC\xDF", "cut \xC3", "\xC0\xAF", "\xED\xA0\x80"}) {
        EXPECT_TRUE(StringValues::fromUtf8(bytes).isNull()) << bytes;
    }
}

} // namespace
