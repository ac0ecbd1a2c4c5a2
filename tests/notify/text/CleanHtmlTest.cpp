#include "notify/text/CleanHtml.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <ctime>

using namespace Qt::StringLiterals;

namespace
{

const HtmlGround light{Qt::black, QColor(0xef, 0xef, 0xef)};
const HtmlGround dark{Qt::white, QColor(0x2d, 0x2f, 0x33)};

std::string clean(const QString &html, const HtmlGround &ground = light, HtmlTables tables = HtmlTables::Kept)
{
    return cleanHtml(html, ground, tables).toStdString();
}

std::string clean(const char *html)
{
    return clean(QString::fromUtf8(html));
}

/// The text of tidy markup, each piece between two tags in brackets.
std::string textOf(const QString &html)
{
    static const QRegularExpression tags(QStringLiteral("<[^>]*>"));
    QString text = cleanHtml(html, light, HtmlTables::Kept);
    return text.replace(tags, QStringLiteral("|"))
        .replace(QRegularExpression(QStringLiteral("[| ]+")), QStringLiteral("|"))
        .toStdString();
}

std::string textOf(const char *html)
{
    return textOf(QString::fromUtf8(html));
}

QString times(int count, const char *text)
{
    return QString::fromUtf8(text).repeated(count);
}

TEST(CleanHtml, KeepsWhatMessagesAreMadeOf)
{
    struct Row {
        const char *html;
        const char *kept;
    };
    const Row rows[] = {
        {"<p>One</p><p>two</p>", "<p>One</p><p>two</p>"},
        {"<p>One<br>two<BR/>three", "<p>One<br/>two<br/>three</p>"},
        {"<div>a</div>", "<div>a</div>"},
        {"<b>a</b> <i>b</i> <u>c</u> <s>d</s>",
         "<span style=\"font-weight:bold;\">a</span> <span style=\"font-style:italic;\">b</span> "
         "<span style=\"text-decoration:underline ;\">c</span> <span style=\"text-decoration: "
         "line-through;\">d</span>"},
        {"<strong>a</strong><em>b</em>",
         "<span style=\"font-weight:bold;\">a</span><span style=\"font-style:italic;\">b</span>"},
        {"<font face=\"Helvetica\" size=\"+1\" color=#cc0000>a</font>",
         "<span style=\"color:#cc0000;font-size:14px;font-family:Helvetica;\">a</span>"},
        {"<span style=\"color: red; font-size:18px; font-weight: 700\">a</span>",
         "<span style=\"color:#ff0000;font-size:18px;font-weight:bold;\">a</span>"},
        {"<h1>a</h1>", "<p style=\"font-size:18px;font-weight:bold;\">a</p>"},
        {"<ul><li>a<li>b</ul>", "<ul><li>a</li><li>b</li></ul>"},
        {"<ol start=3 type=a><li>a</ol>", "<ol type=\"a\" start=\"3\"><li>a</li></ol>"},
        {"<a href=\"https://a.example/?b=c&amp;d='e'\">x</a>",
         "<a href=\"https://a.example/?b=c&amp;d='e'\" style=\"color:#0000ff;\">x</a>"},
        {"<p align=center dir=rtl>a</p>", "<p align=\"center\" dir=\"rtl\">a</p>"},
        {"<p style='text-align:right'>a</p>", "<p align=\"right\">a</p>"},
        {"<table><tr><td>a<td align=right>b</table>",
         "<table border=\"0\" cellspacing=\"0\" cellpadding=\"3\"><tr><td>a</td><td "
         "align=\"right\">b</td></tr></table>"},
        {"<pre>a\n  b</pre>", "<div style=\"white-space:pre-wrap;font-family:monospace;\">a<br/>  b</div>"},
        {"<p>a &amp; b &lt;c&gt; &eacute; &#8364; &#x1F600;</p>",
         "<p>a &amp; b &lt;c&gt; \u00e9 \u20ac \U0001F600</p>"},
        {"<img src=x.png alt=\"Our logo\">", "Our logo"},
        {"<hr>", "<hr/>"},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(clean(row.html), row.kept) << row.html;
    }
}

TEST(CleanHtml, ReadsUntidyMarkupAsBrowsersDo)
{
    struct Row {
        const char *html;
        const char *text; ///< The pieces between the tags.
    };
    const Row rows[] = {
        {"<p>1 < 2 and 2 < 3</p>", "|1|&lt;|2|and|2|&lt;|3|"},
        {"<body bgcolor=ffffff text=#000><p>a</body>", "|a|"},
        {"<p title=\"1 > 0\">a</p>", "|a|"},
        {"<p title='<b>'>a</p>", "|a|"},
        {"<table summary=\"News & offers\"><tr><td>a</table>", "|a|"},
        {"<p>a<b>b<i>c</b>d</i>e", "|a|b|c|d|e|"},
        {"<p>a &copy b &unknown; c & d", "|a|\u00a9|b|&amp;unknown;|c|&amp;|d|"},
        {"<\"p\">a", "&lt;&quot;p&quot;&gt;a"},
        {"<p a\"b>a", "|a|"},
        {"</p x>a", "a"},
        {"<style>p { color: red } <b></style>a", "a"},
        {"<script>if (a < b) document.write('<p>x</p>')</script>a", "a"},
        {"<!DOCTYPE html><html><head><title>t</title><meta charset=utf-8></head><body>a", "a"},
        {"<!-- a <b> -- > --><!---->b<!-->c<!--d--!>e<![CDATA[f]]>g<?h?>i</ j>k", "bcegik"},
        {"<o:p>a</o:p><v:shape>b</v:shape><blink>c</blink>", "abc"},
        {"<section><article>a</article></section><footer>b</footer>", "|a|b|"},
        {"<textarea><b>b</b></textarea>a", "a"},
        {"<xmp><b>a</b> &amp; &lt;</xmp>b", "|&lt;b&gt;a&lt;/b&gt;|&amp;amp;|&amp;lt;|b"},
        {"a<plaintext>b &amp; <i>c</plaintext> </xmp>", "a|b|&amp;amp;|&lt;i&gt;c&lt;/plaintext&gt;|&lt;/xmp&gt;|"},
        {"<listing>a &amp; <b>b</b></listing>", "|a|&amp;|b|"},
        {"<div style='display:none'>hidden</div><p hidden>b</p><span style=\"mso-hide:all\">c</span>a", "a"},
        {"<p>a<p", "|a|"},
        {"<p", ""},
        {"<p title=\"open", ""},
        {"<!--", ""},
        {"<", "&lt;"},
        {"</", "&lt;/"},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(textOf(row.html), row.text) << row.html;
    }
}

TEST(CleanHtml, KeepsTheTextOfWhatThereIsTooMuchOf)
{
    struct Row {
        const char *what;
        QString html;
        QString piece; ///< Of the text that must be there as often.
        int count;
    };
    const Row rows[] = {
        {"fonts", times(200, "<font face=Helvetica>word</font> "), u"word"_s, 200},
        {"paragraphs that nobody has ended", times(1000, "<p>word"), u"word"_s, 1000},
        {"entries that nobody has ended", u"<ul>"_s + times(1000, "<li>word"), u"word"_s, 1000},
        {"depth", times(5000, "<div>word "), u"word"_s, 5000},
        {"depth of fonts", times(5000, "<b>word "), u"word"_s, 5000},
        {"depth of tables", times(1000, "<table><tr><td>word "), u"word"_s, 1000},
        {"cells", u"<table>"_s + times(1000, "<tr><td>word <td>word "), u"word"_s, 2000},
        {"spans", u"<table><tr><td colspan=99999 rowspan=99999>word <td>word "_s, u"word"_s, 2},
        {"lists within lists", times(200, "<ul><li>word "), u"word"_s, 200},
        {"families",
         [] {
             QString html;
             for (int i = 0; i < 500; ++i) {
                 html += u"<font face=f%1>word</font> "_s.arg(i);
             }
             return html;
         }(),
         u"word"_s, 500},
        {"boxes", times(500, "<div style='background:#ff0000'>word</div>"), u"word"_s, 500},
        {"a style", u"<p style=\""_s + times(20'000, "a:b;") + u"\">word"_s, u"word"_s, 1},
        {"an attribute", u"<p title=\""_s + times(60'000, "a") + u"\">word"_s, u"word"_s, 1},
        {"attributes", u"<p "_s + times(20'000, "a=b ") + u">word"_s, u"word"_s, 1},
        {"style sheets", u"<style>"_s + times(200'000, "p{}") + u"</style>word"_s, u"word"_s, 1},
    };
    for (const Row &row : rows) {
        const std::string text = textOf(row.html);
        EXPECT_EQ(QString::fromStdString(text).count(row.piece), row.count) << row.what;
        EXPECT_FALSE(text.find("&lt;") != std::string::npos) << row.what;
    }
}

TEST(CleanHtml, EndsWithAnEllipsisBehindSixtyFourKilobytes)
{
    const QString words = u"<p>"_s + times(20'000, "word ");
    const QString text = cleanHtml(words, light, HtmlTables::Kept);
    EXPECT_GT(text.size(), 65'000);
    EXPECT_LE(text.size(), 65'600);
    EXPECT_TRUE(text.endsWith(u"\u2026</p>"_s)) << text.right(40).toStdString();
    const QString accents = cleanHtml(times(32'768, "\u00e9"), light, HtmlTables::Kept);
    EXPECT_EQ(accents.count(u'\u00e9'), 32'768);
    EXPECT_FALSE(accents.contains(u'\u2026'));
    const QString moreAccents = cleanHtml(times(32'769, "\u00e9"), light, HtmlTables::Kept);
    EXPECT_EQ(moreAccents.count(u'\u00e9'), 32'768);
    EXPECT_TRUE(moreAccents.endsWith(u"\u00e9\u2026"_s));
}

TEST(CleanHtml, CountsNoMarkupAsText)
{
    const QString styled = times(1400, "<p style='color:#333333;font-family:Arial,sans-serif;margin:0'>ten words</p>");
    ASSERT_GT(styled.size(), 100'000);
    const QString tidy = cleanHtml(styled, light, HtmlTables::Kept);
    EXPECT_EQ(tidy.count(u"ten words"_s), 1400);
    EXPECT_FALSE(tidy.contains(u'\u2026'));
    EXPECT_EQ(cleanHtml(times(40'000, "&amp;"), light, HtmlTables::Kept).count(u"&amp;"_s), 40'000);
    EXPECT_EQ(cleanHtml(times(65'000, "<"), light, HtmlTables::Kept).count(u"&lt;"_s), 65'000);
    // What is left out as too much markup has an ellipsis, too.
    const QString references = cleanHtml(u"<p>"_s + times(60'000, "&amp;"), light, HtmlTables::Kept);
    EXPECT_GT(references.count(u"&amp;"_s), 52'000);
    EXPECT_TRUE(references.endsWith(u"&amp;\u2026</p>"_s)) << references.right(40).toStdString();
}

TEST(CleanHtml, WritesNothingBehindTheEllipsis)
{
    const QString tooMuch = times(14'000, "word ");
    const QString rest = u"<p>b</p><br><hr><ul><li>c</ul><table><tr><td>d<td>e</table><pre>f\n g</pre>"_s;
    EXPECT_TRUE(cleanHtml(u"<p>"_s + tooMuch + rest, light, HtmlTables::Kept).endsWith(u"\u2026</p>"_s));
    EXPECT_TRUE(cleanHtml(times(6000, "a\u05d0 ") + rest, light, HtmlTables::Kept).endsWith(u'\u2026'));
    const QString list = cleanHtml(u"<ul><li>"_s + tooMuch + u"<li>b<li>c"_s, light, HtmlTables::Kept);
    EXPECT_TRUE(list.endsWith(u"\u2026</li></ul>"_s)) << list.right(60).toStdString();
    const QString table =
        cleanHtml(u"<table><tr><td>a<td>"_s + times(40'000, "\u00e9 ") + u"<tr><td>b<td>c"_s, light, HtmlTables::Kept);
    EXPECT_EQ(table.count(u'b'), 0);
    EXPECT_TRUE(table.endsWith(u"\u2026</div>"_s)) << table.right(60).toStdString();
}

TEST(CleanHtml, WritesNoMoreThanQtCanLayOut)
{
    const auto count = [](const QString &html, const QString &piece) {
        return cleanHtml(html, light, HtmlTables::Kept).count(piece);
    };
    EXPECT_EQ(count(times(5000, "<p>x</p>"), u"<p"_s) + count(times(5000, "<p>x</p>"), u"</p"_s), 3000)
        << "so many are read";
    EXPECT_EQ(count(times(2900, "<p>x"), u"<p"_s), 2000);
    EXPECT_EQ(count(times(20, "<table><tr><td>x</td><td>"), u"<table"_s), 4);
    EXPECT_LE(count(u"<table>"_s + times(150, "<tr><td>a<td>b"), u"<td"_s), 150);
    EXPECT_EQ(count(u"<table>"_s + times(75, "<tr><td>a<td>b"), u"<td"_s), 150);
    EXPECT_EQ(count(u"<table><tr><td colspan=12 rowspan=13>a<td>b"_s, u"<td"_s), 0);
    EXPECT_EQ(count(times(100, "<div style='background:red'>x</div>"), u"<table"_s), 30);
    EXPECT_EQ(count(times(30, "<ul><li>x"), u"<ul"_s), 4);
    EXPECT_LE(count(times(140, "<div>x"), u"<div"_s), 60);
    EXPECT_EQ(count(u"<pre>"_s + times(9000, "x\n"), u"<br/>"_s), 2500);
    EXPECT_LE(count(u"<p>"_s + times(9000, "a\u05d0 "), u"a"_s), 2501);
    EXPECT_EQ(count(u"<p>"_s + times(1000, "x"), u"\u200b"_s), 9);
    EXPECT_EQ(count(u"<p>a"_s + times(1000, "\u0301"), u"\u0301"_s), 32);
}

TEST(CleanHtml, WritesNothingThatIsLoadedOrRun)
{
    const std::string written =
        clean("<link rel=stylesheet href=x.css><style>@import url(y.css);</style><base href='file:///'>"
              "<body background=a.png onload=b()><p style=\"background:url(c.png);list-style-image:url(d.png)\" "
              "class=e id=f>x"
              "<img src=g.png><iframe src=h></iframe><object data=i>y</object><embed src=j><video src=k></video>"
              "<svg><image href=l /></svg><input type=image src=m><form action=n><button>z</button></form></p>");
    for (const char *piece : {"url", "src", "png", "css", "file", "onload", "class", "id=", "import", "data", "action",
                              "<img", "<link", "<style", "<base", "<body", "<object", "<svg"}) {
        EXPECT_EQ(written.find(piece), std::string::npos) << piece << " in " << written;
    }
    for (const char *text : {"x", "y", "z"}) {
        EXPECT_NE(written.find(text), std::string::npos) << text;
    }
}

TEST(CleanHtml, MakesALinkOnlyOfWhatCanBeOpened)
{
    for (const char *address : {"http://a.example", "https://a.example/b?c#d", "HTTPS://a.example",
                                " ftp://a.example/b ", "mailto:a@b.example", "http://192.0.2.1:8080/"}) {
        const std::string written = clean(u"<a href=\"%1\">x</a>"_s.arg(QLatin1String(address)));
        EXPECT_EQ(written.substr(0, 9), "<a href=\"") << address;
    }
    for (const char *address : {"",
                                "#here",
                                "b.html",
                                "/b",
                                "//a.example/b",
                                "?c",
                                "http:",
                                "http:///b",
                                "https:b",
                                "mailto:",
                                "file:///etc/passwd",
                                "javascript:alert(1)",
                                "data:text/html,x",
                                "smb://a/b",
                                "ssh://a",
                                "about:blank",
                                "FILE:///etc/passwd",
                                "java&#10;script:alert(1)",
                                "x-any:b",
                                "1"}) {
        EXPECT_EQ(clean(u"<p>a <a href=\"%1\"><b>x</b></a></p>"_s.arg(QLatin1String(address))),
                  "<p>a <span style=\"font-weight:bold;\">x</span></p>")
            << address;
    }
}

TEST(CleanHtml, LetsNothingOutOfAnAttribute)
{
    EXPECT_EQ(clean("<a href='http://h/\"><img src=x>'>a</a>"),
              "<a href=\"http://h/&quot;&gt;&lt;img src=x&gt;\" style=\"color:#0000ff;\">a</a>");
    EXPECT_EQ(clean(u"<a href='http://h/\f\ti\U0001f600'>a</a>"_s),
              "<a href=\"http://h/i\U0001f600\" style=\"color:#0000ff;\">a</a>");
    EXPECT_EQ(clean("<font face='a\";b:c}<'>a</font>"), "<span style=\"font-family:abc;\">a</span>");
    EXPECT_EQ(clean("<p style='color:expression(1);font-family:url(x)'>a</p>"), "<p style=\"font-family:urlx;\">a</p>");
    EXPECT_EQ(clean("<td colspan='2\" onclick=\"x'>a"), "a");
}

TEST(CleanHtml, KeepsTextReadableOnItsGround)
{
    EXPECT_EQ(clean("<p style='color:#ffffff'>a</p>"), "<p>a</p>") << "white on light grey";
    EXPECT_EQ(clean(u"<p style='color:#000000'>a</p>"_s, dark), "<p>a</p>") << "black on dark grey";
    EXPECT_EQ(clean(u"<p style='color:#ffffff'>a</p>"_s, dark), "<p>a</p>") << "as it is anyway";
    const std::string box = clean("<div style='background:#003366;color:#fff'>a <a href=http://b.example>c</a></div>");
    EXPECT_NE(box.find("background-color:#003366;color:#ffffff;"), std::string::npos) << box;
    EXPECT_EQ(box.find("color:#0000ff"), std::string::npos) << box;
    const std::string paper = clean(u"<div style='background:#fff'>a</div>"_s, dark);
    EXPECT_NE(paper.find("background-color:#ffffff;color:#000000;"), std::string::npos) << paper;
    EXPECT_EQ(clean("<div style='background:#ffffff'>a</div>"), "<div>a</div>") << "nobody sees it";
}

TEST(CleanHtml, HidesTextWithoutASizeUntilAnElementHasOne)
{
    // So do makers of newsletters keep gaps out of their columns.
    EXPECT_EQ(clean("<div style='font-size:0px'>gap<div style='font-size:13px'>a</div>gap</div>"),
              "<div><div style=\"font-size:13px;\">a</div></div>");
    EXPECT_EQ(clean("<table style='font-size:0'><tr><td style='font-size:0px;padding:0'>gap<p style='font-size:16px'>a"
                    "<span style='font-size:0'>gap<a>gap</a></span></table>"),
              "<div><p style=\"font-size:16px;\">a</p></div>");
    EXPECT_EQ(clean("<table><tr><td style='font-size:0'>gap<td><span style='font-size:12px'>a</span></table>"),
              "<div>a</div>")
        << "a column of nothing";
    EXPECT_EQ(clean("<p style='font-size:0'>gap<img src=a alt=b><img src=c alt=d style='font-size:13px'></p>"),
              "<p>d</p>");
    EXPECT_EQ(clean("<p style='font-size:0.5em'>a</p>"), "<p style=\"font-size:9px;\">a</p>");
    EXPECT_EQ(clean("<p style='opacity:0'>a</p><p style='max-height:0px'>b</p><p style='opacity:0.5'>c</p>"),
              "<p>c</p>");
}

TEST(CleanHtml, DissolvesTablesThatOnlyFrameTheirText)
{
    EXPECT_EQ(clean("<table width=600><tr><td><table width=560><tr><td><p>a</p></td></tr><tr><td>b</td></tr></table>"
                    "</td></tr></table>"),
              "<div><div><p>a</p></div><div>b</div></div>");
    EXPECT_EQ(clean("<table><tr><td>&nbsp;</td><td>a</td></tr><tr><td></td><td>b</td></tr></table>"),
              "<div>a</div><div>b</div>");
    EXPECT_EQ(clean(u"<table><tr><td>a<td>b"_s, light, HtmlTables::Dissolved), "<div>a</div><div>b</div>");
}

TEST(CleanHtml, TakesTimeInProportion)
{
    // What a reader that goes by the standard repairs takes the square of its length, and some of it more.
    QString manyFormats; // No two alike: the reader ends those itself.
    QString formatsAroundTables;
    for (int i = 0; i < 740; ++i) {
        manyFormats += u"<font size=%1></i>"_s.arg(i);
        formatsAroundTables += u"<font size=%1><table><td></font></table>"_s.arg(i);
    }
    const QString hostile[] = {
        u"<p>"_s + manyFormats + times(1500, "<p>x"),
        u"<p>"_s + formatsAroundTables + times(100, "<p>x"),
        times(1500, "<div></b>"),
        times(1500, "<span><div></span>"),
        times(30'000, "<b>x"),
        times(3000, "<b a>") + times(10'000, "<p>x"),
        times(10'000, "<a href=x>"),
        times(20'000, "<table>"),
        times(20'000, "<div><p>"),
        times(20'000, "</p>"),
        times(20'000, "<!--"),
        times(20'000, "<![CDATA["),
        times(20'000, "<style>"),
        u"<p "_s + times(20'000, "a='"),
        times(20'000, "&#x110000;&#0;&#xd800;&;"),
        times(2000, "<p><b><table><tr><td></b></table>"),
        times(5000, "<ul><li><ol>"),
    };
    const auto secondsFor = [](const QString &html) {
        const std::clock_t before = std::clock();
        static_cast<void>(cleanHtml(html, light, HtmlTables::Kept));
        return static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
    };
    constexpr double maxRatio = 25; // The worst takes 5 times as long, and hundreds of times where nothing is done.
    const double harmless = secondsFor(times(10'000, "<p>a</p>"));
    for (const QString &html : hostile) {
        EXPECT_LT(secondsFor(html), maxRatio * harmless) << html.left(40).toStdString();
    }
}

} // namespace
