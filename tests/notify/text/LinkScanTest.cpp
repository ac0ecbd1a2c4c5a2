#include "notify/text/LinkScan.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <ostream>

static void PrintTo(const LinkMatch &match, std::ostream *out)
{
    *out << match.start << '+' << match.length << ' ' << match.absoluteString.toStdString();
}

namespace
{

struct Found {
    const char *words; ///< As they are in the text.
    const char *address;
};

struct Row {
    const char *text;
    std::vector<Found> found;
};

TEST(LinkScan, FindsAddressesAsPeopleWriteThem)
{
    const Row rows[] = {
        {"", {}},
        {"no address here. Nor.here, or 3.14", {}},
        {"http://example.com", {{"http://example.com", "http://example.com"}}},
        {"see https://a.example/x?y=1&z=2#there now", {{"https://a.example/x?y=1&z=2#there", nullptr}}},
        {"ftp://files.example/pub/", {{"ftp://files.example/pub/", nullptr}}},
        {"HTTP://Example.COM/Path", {{"HTTP://Example.COM/Path", "http://example.com/Path"}}},
        {"http://localhost:8080/", {{"http://localhost:8080/", nullptr}}},
        {"http://[::1]/x", {{"http://[::1]/x", nullptr}}},
        {"www.example.com", {{"www.example.com", "http://www.example.com"}}},
        {"www.example.com/a?b", {{"www.example.com/a?b", "http://www.example.com/a?b"}}},
        {"www.example and www. and www..x.y", {}},
        {"awww.example.com", {}},
        {"mailto:a@b.example?subject=x", {{"mailto:a@b.example?subject=x", nullptr}}},
        {"write to help.desk+1@mail.example.com.",
         {{"help.desk+1@mail.example.com", "mailto:help.desk+1@mail.example.com"}}},
        {"a@b, @c.d, e@, f@g.", {}},
        {"a@b.cc,d@e.ff", {{"a@b.cc", "mailto:a@b.cc"}, {"d@e.ff", "mailto:d@e.ff"}}},
        // The sentence goes on behind it.
        {"Is it http://a.b/c? Or http://d.e/f! (http://g.h/i), [http://j.k/l].",
         {{"http://a.b/c", nullptr}, {"http://d.e/f", nullptr}, {"http://g.h/i", nullptr}, {"http://j.k/l", nullptr}}},
        {"http://a.b/c_(d)", {{"http://a.b/c_(d)", nullptr}}},
        {"(http://a.b/c_(d))", {{"http://a.b/c_(d)", nullptr}}},
        {"\"http://a.b/c\" <http://d.e/f>", {{"http://a.b/c", nullptr}, {"http://d.e/f", nullptr}}},
        {"http://a.b\nhttp://c.d\thttp://e.f",
         {{"http://a.b", nullptr}, {"http://c.d", nullptr}, {"http://e.f", nullptr}}},
        {"http://a.b/gr\xc3\xb6\xc3\x9f"
         "e",
         {{"http://a.b/gr\xc3\xb6\xc3\x9f"
           "e",
           "http://a.b/gr%C3%B6%C3%9Fe"}}},
        {"http://a.b/%C3%A9", {{"http://a.b/%C3%A9", nullptr}}},
        // Nothing that could start a program or open a file.
        {"file:///etc/passwd javascript:alert(1) data:text/html,x ssh://a.b smb://c.d", {}},
        {"http:// http://, https://) mailto: mailto:@ ftp:///", {}},
    };
    for (const Row &row : rows) {
        const QString text = QString::fromUtf8(row.text);
        QList<LinkMatch> expected;
        for (const Found &found : row.found) {
            const QString words = QString::fromUtf8(found.words);
            expected.append(
                {text.indexOf(words), words.size(), QString::fromUtf8(found.address ? found.address : found.words)});
        }
        EXPECT_EQ(findLinks(text), expected) << row.text;
    }
}

TEST(LinkScan, TakesTimeInProportionToTheText)
{
    constexpr int size = 2'000'000;
    for (const char *piece : {"http://", "http://(", "http://a)", "mailto:", "www.", "www.?", "@", "a@", "a", "a@b.c,",
                              "a@b.", "(", "http://a"}) {
        const QString unit = QString::fromLatin1(piece);
        const QString text = unit.repeated(size / unit.size());
        QElapsedTimer time;
        time.start();
        static_cast<void>(findLinks(text));
        // A few hundred milliseconds even in a slow build; hours if the time grew with the square.
        EXPECT_LT(time.elapsed(), 30'000) << piece;
    }
}

} // namespace
