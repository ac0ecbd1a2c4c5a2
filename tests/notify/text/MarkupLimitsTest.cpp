#include "notify/text/MarkupLimits.h"

#include <gtest/gtest.h>

namespace
{

QString times(int count, const char *text)
{
    return QString::fromUtf8(text).repeated(count);
}

QString operator+(const char *text, const QString &rest)
{
    return QString::fromUtf8(text) + rest;
}

QString operator+(const QString &text, const char *rest)
{
    return text + QString::fromUtf8(rest);
}

TEST(MarkupLimits, LetPassWhatMessagesAreMadeOf)
{
    const char *messages[] = {
        "<p>Words.</p>",
        "<html><head><title>A title</title><style>p { color: #123456; margin: 4px }</style></head>"
        "<body bgcolor=\"#1234567\"><p style='font-size:14px'>One<br>two<br/>three &amp; four</p></body></html>",
        "<!DOCTYPE html><p>Read <a href=\"https://www.example.com/2026/11/123456789?a=b&amp;c='d'\">this</a>.",
        "<!-- a <comment> with \"anything' --><p title=\"don't\">Words",
        "<table width=\"100%\" cellpadding=4><tr><td colspan=2>a</td></tr><tr><td>b</td><td>c</td></tr></table>",
        "<font face=\"Helvetica\" size=\"+1\">Large</font>",
        "<ul><li>one<li>two</ul><p>unclosed<p>and again",
        "<b>wrong <i>order</b></i> </p>",
    };
    for (const char *message : messages) {
        EXPECT_TRUE(isWithinMarkupLimits(QString::fromUtf8(message))) << message;
    }
    // Writings without blanks.
    EXPECT_TRUE(isWithinMarkupLimits("<p>" + times(1000, "\u65b0\u7248\u672c\u73b0\u5df2\u53d1\u5e03\u3002")));
    EXPECT_TRUE(isWithinMarkupLimits("<p>" + times(1000, "\u65b0\u3057\u3044\u7248\u304c\u516c\u958b\u3002")));
}

struct Limit {
    const char *what;
    QString within;
    QString beyond;
};

TEST(MarkupLimits, RefuseWhatWouldTakeLong)
{
    const QString words = QStringLiteral("word ");
    const Limit limits[] = {
        {"bytes", "<p>" + words.repeated(13'100), "<p>" + words.repeated(13'200)},
        {"bytes of other scripts", "<p>" + times(20'000, "\xe6\xbc\xa2 ").left(32'000),
         "<p>" + times(20'000, "\xe6\xbc\xa2 ")},
        {"depth", times(100, "<div>"), times(101, "<div>")},
        {"depth of mismatched tags", times(100, "<div></b>"), times(101, "<div></b>")},
        {"depth of tags with blanks", times(100, "< div>"), times(101, "< div>")},
        {"tables", times(4, "<table><tr><td>"), times(5, "<table><tr><td>")},
        {"tables in capitals", times(4, "<TABLE><tr><td>"), times(5, "<TABLE><tr><td>")},
        {"elements", times(500, "<b>x</b>"), times(501, "<b>x</b>")},
        {"cells", "<table>" + times(150, "<tr><td>x</td></tr>"),
         "<table>" + times(149, "<tr><td>x</td></tr>") + times(2, "<th>")},
        {"wide cells", "<table>" + times(15, "<td colspan=10>"), "<table>" + times(16, "<td colspan=10>")},
        {"wide and high cells", times(1, "<table><td colspan=15 rowspan=10>"),
         times(1, "<table><td colspan='16' rowspan=\"10\">")},
        {"text in tables", "<table><tr><td>" + words.repeated(1600), "<table><tr><td>" + words.repeated(1700)},
        {"lines in tables", "<table><pre>" + times(450, "x\n"), "<table><pre>" + times(500, "x\n")},
        {"lines", "<pre>" + times(4000, "x\n"), "<pre>" + times(4001, "x\n")},
        {"changes of direction", "<p>" + times(2000, "a \xd7\x90 1 \xd7\x90"),
         "<p>" + times(2001, "a \xd7\x90 1 \xd7\x90")},
        {"changes of script in tables", "<table><tr><td>" + times(480, "a\xce\xb1 "),
         "<table><tr><td>" + times(490, "a\xce\xb1 ")},
        {"tabs", "<pre>" + times(8000, "x\t"), "<pre>" + times(8001, "x\t")},
        {"images", times(50, "<img src=x>"), times(51, "<img src=x>")},
        {"long words", "<p>" + times(250, "x") + " y", "<p>" + times(251, "x")},
        {"long words of ideographs", "<p>" + times(125, "\u6f22\u2060"), "<p>" + times(126, "\u6f22\u2060")},
        {"long words of small syllables", "<p>" + times(250, "\u3041"), "<p>" + times(251, "\u3041")},
        {"fonts", times(20, "<font face=x>y</font>"), times(21, "<font face=x>y</font>")},
        {"fonts in styles", times(10, "<p style='font:9px x;font-family:x'>"),
         times(11, "<p style='font:9px x;font-family:x'>")},
        {"lengths", times(1, "<img width=9999>"), times(1, "<img width=10000>")},
        {"lengths in styles", times(1, "<p style='color:#123456;font-size:9999px'>"),
         times(1, "<p style='color:#123456;font-size:99999px'>")},
        {"lengths in style sheets", times(1, "<style>p{font-size:9999px}</style>"),
         times(1, "<style>p{font-size:10000px}</style>")},
        {"style sheets", "<style>" + times(800, "p {} ").left(4000), "<style>" + times(900, "/**/ ")},
        {"rules", "<style>" + times(100, "p{}") + "</style>" + times(49, "<br>"),
         "<style>" + times(100, "p{}") + "</style>" + times(50, "<br>")},
        {"selectors", "<style>" + times(49, "p,") + "p{}</style>" + times(90, "<br>"),
         "<style>" + times(60, "p,") + "p{}</style>" + times(90, "<br>")},
        {"depth with rules", "<style>* * *{}</style>" + times(12, "<div>"),
         "<style>* * *{}</style>" + times(13, "<div>")},
    };
    for (const Limit &limit : limits) {
        EXPECT_TRUE(isWithinMarkupLimits(limit.within)) << limit.what;
        EXPECT_FALSE(isWithinMarkupLimits(limit.beyond)) << limit.what;
    }
}

TEST(MarkupLimits, RefuseMarkupThatReadersUnderstandDifferently)
{
    const char *messages[] = {
        "<p",
        "<p title=\"open",
        "<\"p\">",
        "<p a\"b>",
        "<p title=\"<b>\">",
        "<p title='>'>",
        "<p <b>",
        "</p x>",
        "<style><b></style>",
        "<div><style></div></style>",
        "<img width='&#57;9999'>",
    };
    for (const char *message : messages) {
        EXPECT_FALSE(isWithinMarkupLimits(QString::fromUtf8(message))) << message;
    }
}

} // namespace
