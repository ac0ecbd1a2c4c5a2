#include "notify/text/MarkupLimits.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

QString times(int count, const char *text)
{
    return QString::fromUtf8(text).repeated(count);
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
    EXPECT_TRUE(isWithinMarkupLimits(u"<p>"_s + times(1000, "\u65b0\u7248\u672c\u73b0\u5df2\u53d1\u5e03\u3002")));
    EXPECT_TRUE(isWithinMarkupLimits(u"<p>"_s + times(1000, "\u65b0\u3057\u3044\u7248\u304c\u516c\u958b\u3002")));
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
        {"bytes", u"<p>"_s + words.repeated(13'100), u"<p>"_s + words.repeated(13'200)},
        {"bytes of other scripts", u"<p>"_s + times(20'000, "\xe6\xbc\xa2 ").left(32'000),
         u"<p>"_s + times(20'000, "\xe6\xbc\xa2 ")},
        {"depth", times(100, "<div>"), times(101, "<div>")},
        {"depth of mismatched tags", times(100, "<div></b>"), times(101, "<div></b>")},
        {"depth of tags with blanks", times(100, "< div>"), times(101, "< div>")},
        {"tables", times(4, "<table><tr><td>"), times(5, "<table><tr><td>")},
        {"tables in capitals", times(4, "<TABLE><tr><td>"), times(5, "<TABLE><tr><td>")},
        {"elements", times(500, "<b>x</b>"), times(501, "<b>x</b>")},
        {"cells", u"<table>"_s + times(150, "<tr><td>x</td></tr>"),
         u"<table>"_s + times(149, "<tr><td>x</td></tr>") + times(2, "<th>")},
        {"wide cells", u"<table>"_s + times(15, "<td colspan=10>"), u"<table>"_s + times(16, "<td colspan=10>")},
        {"wide and high cells", times(1, "<table><td colspan=15 rowspan=10>"),
         times(1, "<table><td colspan='16' rowspan=\"10\">")},
        {"text in tables", u"<table><tr><td>"_s + words.repeated(1600), u"<table><tr><td>"_s + words.repeated(1700)},
        {"lines in tables", u"<table><pre>"_s + times(450, "x\n"), u"<table><pre>"_s + times(500, "x\n")},
        {"lines", u"<pre>"_s + times(4000, "x\n"), u"<pre>"_s + times(4001, "x\n")},
        {"changes of direction", u"<p>"_s + times(2000, "a \xd7\x90 1 \xd7\x90"),
         u"<p>"_s + times(2001, "a \xd7\x90 1 \xd7\x90")},
        {"changes of script in tables", u"<table><tr><td>"_s + times(480, "a\xce\xb1 "),
         u"<table><tr><td>"_s + times(490, "a\xce\xb1 ")},
        {"tabs", u"<pre>"_s + times(8000, "x\t"), u"<pre>"_s + times(8001, "x\t")},
        {"images", times(50, "<img src=x>"), times(51, "<img src=x>")},
        {"long words", u"<p>"_s + times(250, "x") + u" y"_s, u"<p>"_s + times(251, "x")},
        {"long words of ideographs", u"<p>"_s + times(125, "\u6f22\u2060"), u"<p>"_s + times(126, "\u6f22\u2060")},
        {"long words of small syllables", u"<p>"_s + times(250, "\u3041"), u"<p>"_s + times(251, "\u3041")},
        {"fonts", times(20, "<font face=x>y</font>"), times(21, "<font face=x>y</font>")},
        {"fonts in styles", times(10, "<p style='font:9px x;font-family:x'>"),
         times(11, "<p style='font:9px x;font-family:x'>")},
        {"lengths", times(1, "<img width=9999>"), times(1, "<img width=10000>")},
        {"lengths in styles", times(1, "<p style='color:#123456;font-size:9999px'>"),
         times(1, "<p style='color:#123456;font-size:99999px'>")},
        {"lengths in style sheets", times(1, "<style>p{font-size:9999px}</style>"),
         times(1, "<style>p{font-size:10000px}</style>")},
        {"style sheets", u"<style>"_s + times(800, "p {} ").left(4000), u"<style>"_s + times(900, "/**/ ")},
        {"rules", u"<style>"_s + times(100, "p{}") + u"</style>"_s + times(49, "<br>"),
         u"<style>"_s + times(100, "p{}") + u"</style>"_s + times(50, "<br>")},
        {"selectors", u"<style>"_s + times(49, "p,") + u"p{}</style>"_s + times(90, "<br>"),
         u"<style>"_s + times(60, "p,") + u"p{}</style>"_s + times(90, "<br>")},
        {"depth with rules", u"<style>* * *{}</style>"_s + times(12, "<div>"),
         u"<style>* * *{}</style>"_s + times(13, "<div>")},
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
