#include "notify/feed/FeedTokens.h"

#include "notify/feed/FeedParser.h"
#include "notify/record/KivNotification.h"
#include "tests/support/ProcessorTime.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

/// The tokens in the notation <a 'characters' a>.
std::string notationOf(const QByteArray &document)
{
    std::string text;
    for (const FeedToken &token : feedTokens(document).tokens) {
        const std::string word = token.text.toStdString();
        switch (token.kind) {
        case FeedToken::Kind::StartElement:
            text += '<' + word + ' ';
            break;
        case FeedToken::Kind::Characters:
            text += '\'' + word + "' ";
            break;
        case FeedToken::Kind::EndElement:
            text += word + '>';
            break;
        }
    }
    return text;
}

TEST(FeedTokens, AreTheElementsAndWhatFollowsTheirStarts)
{
    EXPECT_EQ(notationOf("<a><b>1</b><c>2</c></a>"), "<a <b '1' b><c '2' c>a>");
    EXPECT_EQ(notationOf("<a>1<b>2</b>3<c/>4</a>"), "<a '1' <b '2' b><c c>a>");
    EXPECT_EQ(notationOf("<?xml version='1.0'?>\n<a:b c='d' e:f=''/>\n"), "<a:b a:b>");
}

TEST(FeedTokens, HaveTheCharactersOfAnElementInOne)
{
    EXPECT_EQ(notationOf("<a> 1 &amp;<!-- no --><![CDATA[<b>]]><?no no?>&#50; </a>"), "<a ' 1 &<b>2 ' a>");
}

TEST(FeedTokens, SayWhetherTheDocumentIsMalformedAndWhy)
{
    EXPECT_FALSE(feedTokens("<a/>").isMalformed);
    EXPECT_TRUE(feedTokens("<a/>").remark.isNull());
    const FeedTokens cut = feedTokens("<a><b>1</b>");
    EXPECT_TRUE(cut.isMalformed);
    EXPECT_EQ(cut.remark.left(36), QStringLiteral("the document is malformed: line 1 co"));
    EXPECT_EQ(cut.tokens.size(), 4U);
}

TEST(FeedTokens, AreThoseOfTheFirstHundredThousandElements)
{
    const auto withElements = [](int elements) {
        return feedTokens("<a>" + QByteArray("<b/>").repeated(elements - 1) + "</a>");
    };
    const FeedTokens all = withElements(100'000);
    EXPECT_EQ(all.tokens.size(), 200'000U);
    EXPECT_TRUE(all.remark.isNull());
    const FeedTokens beginning = withElements(100'001);
    EXPECT_EQ(beginning.tokens.size(), 199'999U);
    EXPECT_FALSE(beginning.isMalformed) << "it is not to be kept for the next answer";
    EXPECT_EQ(beginning.remark, QStringLiteral("the document has more than 100000 elements: the others are left out"));
}

TEST(FeedTokens, HaveTheBeginningOfAnEndlessText)
{
    constexpr qsizetype limit = qsizetype{512} * 1024;
    const QByteArray endless(limit, 'x');
    const FeedTokens texts = feedTokens("<a>" + endless + "<b>" + endless + "<!-- -->" + endless + "</b></a>");
    ASSERT_EQ(texts.tokens.size(), 6U);
    EXPECT_EQ(texts.tokens[1].text, QString(limit, u'x'));
    EXPECT_EQ(texts.tokens[3].text, QString(limit, u'x'));
}

TEST(FeedTokens, LeaveLittleToDoOfEachPartHoweverLongItIs)
{
    constexpr struct {
        const char *begin;
        const char *piece;
        const char *end;
    } parts[] = {{"<messageId>", ".", "</messageId>"},
                 {"<contentType>", "\xC4\xB0", "</contentType>"},
                 {"<messageText>", ".", "</messageText>"},
                 {"<contentData>", ".", "</contentData>"},
                 {"<contentData>", "QUJD", "</contentData>"},
                 {"<contentData>", "&#46;", "</contentData>"},
                 {"<contentData><![CDATA[", "PGJy", "]]></contentData>"},
                 {"<!--", ".", "-->"},
                 {"<?a ", ".", "?>"},
                 {"<messageId a='", ".", "'/>"},
                 {"<messageId", " ", "/>"}};
    for (const auto &part : parts) {
        const QByteArray piece(part.piece);
        const QByteArray document = "<supportMessages><supportMessage><contentHeight>7</contentHeight>" +
                                    QByteArray(part.begin) + piece.repeated(8'000'000 / piece.size()) + part.end +
                                    "</supportMessage></supportMessages>";
        int records = 0;
        FeedParser parser([&records](const auto &) { ++records; });
        auto before = processorTimeOfThisThread();
        const auto reading = FeedParser::open(document);
        const auto opening = processorTimeOfThisThread() - before;
        parser.begin(reading);
        std::chrono::nanoseconds longest{};
        std::optional<FeedParser::Outcome> outcome;
        while (!outcome) {
            before = processorTimeOfThisThread();
            outcome = parser.read(QDeadlineTimer(0));
            longest = std::max(longest, processorTimeOfThisThread() - before);
        }
        EXPECT_EQ(outcome, FeedParser::Outcome::EndOfDocument) << part.begin;
        EXPECT_EQ(records, 1);
        EXPECT_LT(2 * longest, opening) << part.begin << part.piece;
    }
}

} // namespace
