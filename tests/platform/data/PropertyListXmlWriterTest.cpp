#include "platform/data/PropertyListXmlWriter.h"

#include "platform/data/PropertyListXmlReader.h"
#include "platform/data/UtcTime.h"

#include <QDateTime>
#include <QRect>

#include <gtest/gtest.h>

#include <limits>

using PropertyListXmlWriter::write;

namespace
{

const QByteArray head =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
const QByteArray foot = "</plist>\n";

std::string body(const QVariant &value)
{
    const QByteArray xml = write(value);
    EXPECT_TRUE(xml.startsWith(head) && xml.endsWith(foot)) << xml.toStdString();
    return xml.mid(head.size()).chopped(foot.size()).toStdString();
}

QVariant nested(int levels)
{
    QVariant value = true;
    for (int i = 0; i < levels; ++i) {
        value = i % 2 ? QVariant(QVariantList{value}) : QVariant(QVariantMap{{QStringLiteral("k"), value}});
    }
    return value;
}

TEST(PropertyListXmlWriter, WritesTheUsualForm)
{
    const QVariantMap value{
        {QStringLiteral("string"), QStringLiteral("a<b> & \"c\"")},
        {QStringLiteral("empty"), QStringLiteral("")},
        {QStringLiteral("array"), QVariantList{qlonglong(-1), QVariantMap{{QStringLiteral("<k>"), false}}}},
        {QStringLiteral("none"), QVariantList()},
        {QStringLiteral("nothing"), QVariantMap()},
        {QStringLiteral("data"), QByteArray(58, '\0')},
        {QStringLiteral("date"), QDateTime(QDate(2038, 1, 19), QTime(3, 14, 8, 999), inUtc)},
    };
    EXPECT_EQ(body(value), "<dict>\n"
                           "\t<key>array</key>\n"
                           "\t<array>\n"
                           "\t\t<integer>-1</integer>\n"
                           "\t\t<dict>\n"
                           "\t\t\t<key>&lt;k&gt;</key>\n"
                           "\t\t\t<false/>\n"
                           "\t\t</dict>\n"
                           "\t</array>\n"
                           "\t<key>data</key>\n"
                           "\t<data>\n"
                           "\t" +
                               std::string(76, 'A') +
                               "\n"
                               "\tAA==\n"
                               "\t</data>\n"
                               "\t<key>date</key>\n"
                               "\t<date>2038-01-19T03:14:08Z</date>\n"
                               "\t<key>empty</key>\n"
                               "\t<string></string>\n"
                               "\t<key>none</key>\n"
                               "\t<array/>\n"
                               "\t<key>nothing</key>\n"
                               "\t<dict/>\n"
                               "\t<key>string</key>\n"
                               "\t<string>a&lt;b&gt; &amp; \"c\"</string>\n"
                               "</dict>\n");
}

TEST(PropertyListXmlWriter, WritesNumbersOfEveryWidth)
{
    const std::pair<QVariant, const char *> numbers[] = {
        {7, "<integer>7</integer>\n"},
        {-7, "<integer>-7</integer>\n"},
        {7U, "<integer>7</integer>\n"},
        {QVariant::fromValue<short>(-7), "<integer>-7</integer>\n"},
        {QVariant::fromValue<ushort>(65535), "<integer>65535</integer>\n"},
        {QVariant::fromValue<long>(-7), "<integer>-7</integer>\n"},
        {QVariant::fromValue<ulong>(7), "<integer>7</integer>\n"},
        {std::numeric_limits<qlonglong>::min(), "<integer>-9223372036854775808</integer>\n"},
        {std::numeric_limits<qulonglong>::max(), "<integer>18446744073709551615</integer>\n"},
        {320.0F, "<real>320</real>\n"},
        {0.1, "<real>0.1</real>\n"},
        {-0.0, "<real>-0.0</real>\n"},
        {std::numeric_limits<double>::infinity(), "<real>+infinity</real>\n"},
        {-std::numeric_limits<double>::infinity(), "<real>-infinity</real>\n"},
        {std::numeric_limits<double>::quiet_NaN(), "<real>nan</real>\n"},
        {true, "<true/>\n"},
    };
    for (const auto &[number, xml] : numbers) {
        EXPECT_EQ(body(number), xml);
    }
}

TEST(PropertyListXmlWriter, DropsTheCharactersThatXmlForbids)
{
    const std::pair<QString, const char *> texts[] = {
        {QStringLiteral("a\u0001b\u001Fc\u0000d"), "abcd"},
        {QStringLiteral("\t\n"), "\t\n"},
        {QStringLiteral("1\r\n2\r"), "1&#13;\n2&#13;"},
        {QStringLiteral("a\uFFFEb\uFFFFc\uFFFDd"), "abc\xEF\xBF\xBD"
                                                   "d"},
        {QStringLiteral("\U0001F600"), "\xF0\x9F\x98\x80"},
        {u'a' + QString(QChar(0xD83D)), "a"},
        {QString(QChar(0xDE00)) + u'b', "b"},
        {QString(QChar(0xDE00)) + QChar(0xD83D), ""},
        {QString(QChar(0xD83D)) + QStringLiteral("\U0001F600"), "\xF0\x9F\x98\x80"},
        {QStringLiteral("\u007F\u0080\u0085"), "\x7F\xC2\x80\xC2\x85"},
    };
    for (const auto &[text, xml] : texts) {
        EXPECT_EQ(body(text), "<string>" + std::string(xml) + "</string>\n");
        EXPECT_EQ(body(QVariantMap{{text, true}}),
                  "<dict>\n\t<key>" + std::string(xml) + "</key>\n\t<true/>\n</dict>\n");
        EXPECT_EQ(PropertyListXmlReader::read(write(text)).toString().remove(u'\r'),
                  QString::fromUtf8(xml).remove(QStringLiteral("&#13;")));
    }
}

TEST(PropertyListXmlWriter, KeepsCarriageReturns)
{
    const QString text = QStringLiteral("1\r\n2\r3\n4");
    EXPECT_EQ(PropertyListXmlReader::read(write(text)).toString(), text);
}

TEST(PropertyListXmlWriter, LeavesOutWhatNoListCanHold)
{
    const QVariant unfit[] = {QVariant(),
                              QString(),
                              QDateTime(),
                              QRect(1, 2, 3, 4),
                              QVariant(QDate(2001, 1, 1)),
                              QVariant::fromValue(nullptr)};
    for (const QVariant &value : unfit) {
        EXPECT_EQ(write(value), QByteArray());
        EXPECT_EQ(body(QVariantList{1, value, 2}),
                  "<array>\n\t<integer>1</integer>\n\t<integer>2</integer>\n</array>\n");
        EXPECT_EQ(body(QVariantMap{{QStringLiteral("a"), value}, {QStringLiteral("b"), 2}}),
                  "<dict>\n\t<key>b</key>\n\t<integer>2</integer>\n</dict>\n");
        EXPECT_EQ(body(QVariantMap{{QStringLiteral("a"), QVariantList{value}}}),
                  "<dict>\n\t<key>a</key>\n\t<array/>\n</dict>\n");
        EXPECT_EQ(body(QVariantMap{{QStringLiteral("a"), value}}), "<dict/>\n");
    }
}

TEST(PropertyListXmlWriter, WritesNothingThatCouldNotBeReadAgain)
{
    EXPECT_EQ(PropertyListXmlReader::read(write(nested(512))), nested(512));
    EXPECT_EQ(write(nested(513)), QByteArray());
    EXPECT_EQ(write(nested(3000)), QByteArray());

    EXPECT_EQ(PropertyListXmlReader::read(write(QVariantList(999'999, true))).toList().size(), 999'999);
    EXPECT_EQ(write(QVariantList(1'000'000, true)), QByteArray());

    const QVariantList thousand(1000, true);
    EXPECT_EQ(write(QVariantList(1000, QVariantList(1000, thousand))), QByteArray()); // A thousand million values.
}

TEST(PropertyListXmlWriter, WritesSixteenMebibytesAndNotOneMore)
{
    constexpr qsizetype maxBytes = qsizetype{16} * 1024 * 1024;
    const qsizetype frame = write(QStringLiteral("")).size();
    EXPECT_EQ(write(QString(maxBytes - frame, u'x')).size(), maxBytes);
    EXPECT_EQ(write(QString(maxBytes - frame + 1, u'x')), QByteArray());
    EXPECT_EQ(write(QVariantList(100, QByteArray(1'000'000, 'x'))), QByteArray());
}

} // namespace
