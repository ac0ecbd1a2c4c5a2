#include "notify/feed/ContentData.h"

#include <gtest/gtest.h>

namespace
{

QString shown(const QByteArray &content)
{
    return messageTextFromContent(QString::fromLatin1(content.toBase64()));
}

TEST(ContentData, KeepsPlainTextWithItsLineFeeds)
{
    EXPECT_EQ(shown("First line\nsecond line\r\n"), QStringLiteral("First line\nsecond line\r\n"));
    EXPECT_EQ(shown("1 < 2 <body>"), QStringLiteral("1 < 2 <body>"));
    EXPECT_EQ(shown(" <p>one\ntwo</p>"), QStringLiteral(" <p>one\ntwo</p>")); // The blank makes it plain.
}

TEST(ContentData, WrapsHtmlWithoutABodyAndBreaksItsLines)
{
    EXPECT_EQ(shown("<b>one</b>\n<i>two</i>"),
              QStringLiteral("<body><font face=\"Helvetica\" size=\"+1\"><b>one</b><br/><i>two</i></font></body>"));
    EXPECT_EQ(shown("<"), QStringLiteral("<body><font face=\"Helvetica\" size=\"+1\"><</font></body>"));
    EXPECT_EQ(shown("<p>%1 %@ 100%\r\n\n"),
              QStringLiteral("<body><font face=\"Helvetica\" size=\"+1\"><p>%1 %@ 100%\r<br/><br/></font></body>"));
}

TEST(ContentData, KeepsHtmlWithABodyOfItsOwn)
{
    EXPECT_EQ(shown("<html>\n<body>text\n</body></html>"), QStringLiteral("<html>\n<body>text\n</body></html>"));
}

TEST(ContentData, KnowsTheBodyOnlyAsItIsSpelt)
{
    for (const char *body : {"<BODY>", "<body >", "<body class=\"a\">"}) {
        EXPECT_TRUE(shown(QByteArray("<p>") + body).startsWith(QLatin1String("<body><font "))) << body;
    }
}

TEST(ContentData, IsEmptyForNoContent)
{
    for (const char *content : {"", "=", "Z", " \n"}) {
        const QString text = messageTextFromContent(QString::fromLatin1(content));
        EXPECT_FALSE(text.isNull()) << content;
        EXPECT_TRUE(text.isEmpty()) << content;
    }
}

TEST(ContentData, IsNilForWhatIsNotUtf8)
{
    for (const char *bytes : {"\xFF", "abc\xC3", "\xC0\x80", "\xED\xA0\x80", "<p>\xE9</p>", "\xF4\x90\x80\x80"}) {
        EXPECT_TRUE(shown(bytes).isNull()) << bytes;
    }
}

TEST(ContentData, ReadsUtf8)
{
    EXPECT_EQ(shown("caf\xC3\xA9 \xF0\x9F\x98\x80"), QString::fromUtf8("caf\xC3\xA9 \xF0\x9F\x98\x80"));
    EXPECT_EQ(shown("\xEF\xBB\xBFtext"), QString(QChar(0xFEFF)) + QStringLiteral("text"));
}

TEST(ContentData, EndsAtAZeroByte)
{
    EXPECT_EQ(shown(QByteArray("shown\0hidden", 12)), QStringLiteral("shown"));
    EXPECT_EQ(shown(QByteArray("shown\0\xFF", 7)), QStringLiteral("shown"));
}

TEST(ContentData, SkipsWhatIsNotBase64)
{
    EXPECT_EQ(messageTextFromContent(QString::fromUtf8("\n  aGVs\n\xC3\xA9  bG8=\n")), QStringLiteral("hello"));
}

} // namespace
