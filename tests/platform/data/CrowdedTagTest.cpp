#include "platform/data/CrowdedTag.h"

#include <QString>

#include <gtest/gtest.h>

namespace
{

constexpr int maxOfATag = 2;

TEST(CrowdedTag, LetsADocumentWithoutOneThrough)
{
    for (const char *document : {"", "<", "<a", "<a b='1' c='2'/>", "<a b='1' c='2'><d e='3'/></a>", "no tag = = =",
                                 "<a>= = = =</a>", "<a b='= = =' c=\"= > = > =\"/>", "<a b='\"= = =\"'/>",
                                 "<?a b='1' c='2' d='3'?>", "< a=b=c=d", "</a b=c=d=e>", "<!-- a=b=c=d -->"}) {
        const QString text = QString::fromUtf8(document);
        EXPECT_EQ(lengthBeforeCrowdedTag(text, maxOfATag), text.size()) << document;
    }
}

TEST(CrowdedTag, EndsBeforeTheFirst)
{
    constexpr std::pair<const char *, const char *> documents[] = {
        {"<a>text</a>", "<b c='1' d='2' e='3'/><f g='1' h='2' i='3'/>"},
        {"<a>", "<b\nc\n=\n'1' d=\"2\" e='3' unfinished"},
        {"<a>", "<b c='>' d='>' e='>'>"},
        {"<a>", "<\xC3\xA9 c='1' d='2' e='3'>"},
        {"<a b='unfinished", "<c d='1' e='2' f='3'>"},
        {"", "<_ b=''c=''d=''/>"},
    };
    for (const auto &[before, rest] : documents) {
        const QString text = QString::fromUtf8(before) + QString::fromUtf8(rest);
        EXPECT_EQ(lengthBeforeCrowdedTag(text, maxOfATag), QString::fromUtf8(before).size()) << before << rest;
    }
}

} // namespace
