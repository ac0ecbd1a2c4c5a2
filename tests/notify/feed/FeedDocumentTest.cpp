#include "notify/feed/FeedDocument.h"

#include <QList>
#include <QStringEncoder>

#include <gtest/gtest.h>

namespace
{

constexpr int maxAttributes = 2;

QString textOf(const QByteArray &bytes)
{
    return feedDocument(bytes, maxAttributes).text;
}

bool isWhole(const QByteArray &bytes)
{
    return feedDocument(bytes, maxAttributes).isWhole;
}

TEST(FeedDocument, IsTheWholeTextOfAWellMadeDocument)
{
    for (const QByteArray bytes : {"<a/>", "<?xml version='1.0'?><a>\xC3\xA9</a>", "text", "<a b='1' c='2'/>"}) {
        EXPECT_EQ(textOf(bytes), QString::fromUtf8(bytes));
        EXPECT_TRUE(isWhole(bytes)) << bytes.constData();
    }
    const QByteArray lateRoot = QByteArray(5000, ' ') + "<a/>";
    EXPECT_EQ(textOf(lateRoot), QString::fromUtf8(lateRoot));
}

TEST(FeedDocument, EndsBeforeTheFirstBytesThatAreNotUtf8)
{
    for (const char *before : {"", "<", "<a>", "<a>\xC3\xA9", "<a>\xE2\x82\xAC</a>", "<a>\xF0\x9F\x98\x80"}) {
        for (const char *bad : {"\x80", "\xBF\xBF\xBF\xBF\xBF", "\xFF", "\xC3", "\xE2\x82", "\xC0\x80", "\xED\xA0\x80",
                                "\xF8\x88\x80\x80\x80", "\xF0\x9F\x98"}) {
            for (const char *after : {"", "<b/>", "\xC3\xA9<b/>"}) {
                const QByteArray bytes = QByteArray(before) + bad + after;
                EXPECT_EQ(textOf(bytes), QString::fromUtf8(before)) << bytes.toHex().constData();
                EXPECT_FALSE(isWhole(bytes));
            }
        }
    }
}

/// In UTF-16 or UTF-32, both byte orders, with their marks.
QList<QByteArray> encodedWhole(const QString &text)
{
    QList<QByteArray> result;
    for (const auto encoding :
         {QStringConverter::Utf16LE, QStringConverter::Utf16BE, QStringConverter::Utf32LE, QStringConverter::Utf32BE}) {
        QStringEncoder encoder(encoding, QStringConverter::Flag::WriteBom);
        result.append(encoder(text));
    }
    return result;
}

/// The number in a unit of as many bytes, which are in the order of the document's mark.
QByteArray unit(const QByteArray &document, int size, quint32 number)
{
    const bool isLittle = document.startsWith('\xFF');
    QByteArray bytes(size, '\0');
    for (int i = 0; i < size; ++i) {
        bytes[isLittle ? i : size - 1 - i] = static_cast<char>(number >> (8 * i));
    }
    return bytes;
}

TEST(FeedDocument, TakesTheWholeOfUtf16AndUtf32)
{
    const QString text = QStringLiteral("<a>\u00E9\U0001F600\U0010FFFF\uD7FF\uE000</a>");
    for (const QByteArray &bytes : encodedWhole(text)) {
        EXPECT_EQ(textOf(bytes), text) << bytes.toHex().constData();
        EXPECT_TRUE(isWhole(bytes)) << bytes.toHex().constData();
        EXPECT_EQ(textOf(bytes.chopped(1)), text.chopped(1)) << bytes.toHex().constData();
        EXPECT_FALSE(isWhole(bytes.chopped(1))) << bytes.toHex().constData();
    }
}

TEST(FeedDocument, EndsBeforeTheFirstBytesThatAreNotUtf16OrUtf32)
{
    const QString before = QStringLiteral("<a>\U0001F600");
    const QList<QByteArray> encoded = encodedWhole(before);
    for (qsizetype i = 0; i < encoded.size(); ++i) {
        const QByteArray &start = encoded[i];
        const bool isUtf16 = i < 2;
        const int size = isUtf16 ? 2 : 4;
        const QByteArray letter = unit(start, size, 'b');
        const QByteArray high = unit(start, size, 0xD83D);
        const QByteArray low = unit(start, size, 0xDE00);
        QList<QByteArray> broken = {high,           low, high + letter, low + letter, low + high, high + high + letter,
                                    letter.first(1)};
        if (!isUtf16) {
            broken += {high + low, unit(start, 4, 0x110000), unit(start, 4, 0xFFFFFFFF) + letter, letter.first(3)};
        }
        for (const QByteArray &rest : broken) {
            EXPECT_EQ(textOf(start + rest), before) << (start + rest).toHex().constData();
            EXPECT_FALSE(isWhole(start + rest)) << (start + rest).toHex().constData();
        }
    }
}

TEST(FeedDocument, TakesAsciiForUtf8)
{
    for (const QByteArray name : {"US-ASCII", "us-ascii", "ASCII"}) {
        const QByteArray bytes = "<?xml version='1.0' encoding='" + name + "'?><a/>";
        EXPECT_EQ(textOf(bytes), QString::fromUtf8(bytes));
        EXPECT_TRUE(isWhole(bytes)) << name.constData();
    }
}

TEST(FeedDocument, TakesEveryByteForACharacterOfLatin1)
{
    const QByteArray bytes("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9\xFF</a>");
    EXPECT_EQ(textOf(bytes), QString::fromLatin1(bytes));
    EXPECT_TRUE(isWhole(bytes));
}

TEST(FeedDocument, IsEmptyInAnotherEncoding)
{
    for (const QByteArray name : {"UTF-7", "windows-1252", "ISO-8859-2", "Shift_JIS", "GB18030"}) {
        const QByteArray bytes = "<?xml version='1.0' encoding='" + name + "'?><a/>";
        EXPECT_EQ(textOf(bytes), QString()) << name.constData();
        EXPECT_FALSE(isWhole(bytes)) << name.constData();
    }
}

TEST(FeedDocument, EndsBeforeATagWithTooManyAttributes)
{
    EXPECT_EQ(textOf("<a><b c='1' d='2' e='3'/></a>"), QStringLiteral("<a>"));
    EXPECT_FALSE(isWhole("<a><b c='1' d='2' e='3'/></a>"));
}

TEST(FeedDocument, EndsBeforeADocumentTypeThatMayDeclareSomething)
{
    for (const QByteArray before : {"", "<?xml version='1.0'?>\n", "<!-- a -->", " <?a?> ", "<a/>\n"}) {
        for (const QByteArray after : {"<!DOCTYPE a [<!ENTITY e 'text'>]><a>&e;</a>",
                                       "<!DOCTYPE a SYSTEM '>' [<!ENTITY e 'text'>]>", "<!DOCTYPE"}) {
            EXPECT_EQ(textOf(before + after), QString::fromUtf8(before)) << after.constData();
            EXPECT_FALSE(isWhole(before + after)) << after.constData();
        }
    }
    EXPECT_TRUE(isWhole("<!-- <!DOCTYPE a> --><a><![CDATA[<!DOCTYPE a>]]></a>"));
    EXPECT_TRUE(isWhole("<!DOCTYPE a SYSTEM '['><a/>"));
    EXPECT_EQ(textOf("<!DOCTYPE a><a/><!DOCTYPE a>"), QStringLiteral("<!DOCTYPE a><a/>"));
}

} // namespace
