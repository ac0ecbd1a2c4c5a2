#include "notify/feed/FeedParser.h"

#include "notify/record/DistantFuture.h"
#include "notify/record/KivNotification.h"
#include "notify/record/UndefinedKeyException.h"
#include "platform/data/UtcTime.h"
#include "tests/support/LogLines.h"

#include <QElapsedTimer>
#include <QStringEncoder>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace
{

using Outcome = FeedParser::Outcome;
using Records = std::vector<std::shared_ptr<KivNotification>>;

struct Feed {
    Records records;
    FeedParser parser{[this](const std::shared_ptr<KivNotification> &record) { records.push_back(record); }};

    std::vector<std::string> ids() const
    {
        std::vector<std::string> found;
        for (const auto &record : records) {
            found.push_back(record->messageId().toStdString());
        }
        return found;
    }
};

using Ids = std::vector<std::string>;

QByteArray documentOf(const QByteArray &messages)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<supportMessages>\n" + messages + "</supportMessages>\n";
}

QByteArray message(const QByteArray &fields)
{
    return "<supportMessage>" + fields + "</supportMessage>\n";
}

/// The one record of a feed with a message that holds these fields.
KivNotification recordOf(const QByteArray &fields)
{
    Feed feed;
    EXPECT_EQ(feed.parser.parse(documentOf(message(fields))), Outcome::EndOfDocument);
    EXPECT_EQ(feed.records.size(), 1U);
    return feed.records.empty() ? KivNotification() : *feed.records.front();
}

TEST(FeedParser, ReadsAWholeMessage)
{
    const KivNotification record = recordOf("\n  <messageId>17</messageId>\n"
                                            "  <messageType>update</messageType>\n"
                                            "  <messageLevel>admin</messageLevel>\n"
                                            "  <messageRepeat>3</messageRepeat>\n"
                                            "  <messagePriority>high</messagePriority>\n"
                                            "  <productCode>kivunets</productCode>\n"
                                            "  <licenseType>paid</licenseType>\n"
                                            "  <minVersion>3.1</minVersion>\n"
                                            "  <maxVersion>3.2.1</maxVersion>\n"
                                            "  <buildDate>2011-05-20</buildDate>\n"
                                            "  <systemCode>osx</systemCode>\n"
                                            "  <minSysVer>10.5</minSysVer>\n"
                                            "  <maxSysVer>10.7</maxSysVer>\n"
                                            "  <minDate>05/20/2011</minDate>\n"
                                            "  <maxDate>06/20/2011</maxDate>\n"
                                            "  <contentEncoding>base64</contentEncoding>\n"
                                            "  <contentType>text/html</contentType>\n"
                                            "  <contentWidth>280</contentWidth>\n"
                                            "  <contentHeight>60.5</contentHeight>\n"
                                            "  <contentData>PGI+QTwvYj4KPGI+QjwvYj4=</contentData>\n");
    EXPECT_EQ(record.messageId(), QStringLiteral("17"));
    EXPECT_EQ(record.messageType(), 0);
    EXPECT_EQ(record.messageTypeString(), QStringLiteral("New update"));
    EXPECT_EQ(record.messageLevel(), 1);
    EXPECT_EQ(record.messageRepeat(), 3U);
    EXPECT_EQ(record.messagePriority(), 2);
    EXPECT_EQ(record.productCode(), 1);
    EXPECT_EQ(record.licenseType(), 1);
    EXPECT_EQ(record.minVersion(), QStringLiteral("3.1"));
    EXPECT_EQ(record.maxVersion(), QStringLiteral("3.2.1"));
    EXPECT_EQ(record.buildDate(), QStringLiteral("20110520"));
    EXPECT_EQ(record.systemCode(), QStringLiteral("osx"));
    EXPECT_EQ(record.minSysVer(), QStringLiteral("10.5"));
    EXPECT_EQ(record.maxSysVer(), QStringLiteral("10.7"));
    EXPECT_EQ(record.minDate(), QDateTime(QDate(2011, 5, 20), QTime(5, 0), inUtc));
    EXPECT_EQ(record.maxDate(), QDateTime(QDate(2011, 6, 20), QTime(5, 0), inUtc));
    EXPECT_EQ(record.contentEncoding(), QStringLiteral("base64"));
    EXPECT_EQ(record.contentType(), QStringLiteral("text/html"));
    EXPECT_EQ(record.contentWidth(), 280.0F);
    EXPECT_EQ(record.contentHeight(), 60.5F);
    EXPECT_EQ(record.messageText(),
              QStringLiteral("<body><font face=\"Helvetica\" size=\"+1\"><b>A</b><br/><b>B</b></font></body>"));
}

TEST(FeedParser, LeavesTheDefaultsOfAnEmptyMessage)
{
    EXPECT_EQ(recordOf("").exportToDictionary(), KivNotification().exportToDictionary());
}

TEST(FeedParser, ReadsEachCodeByItsWord)
{
    struct {
        const char *element;
        std::vector<const char *> words;
        std::int32_t (KivNotification::*code)() const noexcept;
        std::int32_t byDefault;
    } const fields[] = {
        {"messageType", {"update", "notice", "news", "warning"}, &KivNotification::messageType, 1},
        {"messageLevel", {"user", "admin", "any"}, &KivNotification::messageLevel, 2},
        {"messagePriority", {"low", "medium", "high"}, &KivNotification::messagePriority, 1},
        {"productCode", {"kivune", "kivunets", "any"}, &KivNotification::productCode, 2},
        {"licenseType", {"trial", "paid", "any"}, &KivNotification::licenseType, 2},
    };
    for (const auto &field : fields) {
        const auto codeFor = [&field](const QByteArray &text) {
            const QByteArray element(field.element);
            return (recordOf('<' + element + '>' + text + "</" + element + '>').*field.code)();
        };
        for (std::size_t i = 0; i < field.words.size(); ++i) {
            EXPECT_EQ(codeFor(field.words[i]), static_cast<std::int32_t>(i)) << field.element << field.words[i];
            EXPECT_EQ(codeFor(QByteArray(field.words[i]).toUpper()), static_cast<std::int32_t>(i)) << field.words[i];
        }
        for (const char *other : {"", "instant", "0", "3", " low", "update\n"}) {
            EXPECT_EQ(codeFor(other), field.byDefault) << field.element << other;
        }
    }
}

TEST(FeedParser, LowercasesEverythingButTheContent)
{
    EXPECT_EQ(recordOf("<messageType>Warning</messageType>").messageType(), 3);
    const KivNotification record =
        recordOf("<messageId>ID-17</messageId><minVersion>3.2-RC</minVersion>"
                 "<systemCode>OSX</systemCode><messageText>&#xC9;T&#xC9; &lt;B&gt;</messageText>");
    EXPECT_EQ(record.messageId(), QStringLiteral("id-17"));
    EXPECT_EQ(record.minVersion(), QStringLiteral("3.2-rc"));
    EXPECT_EQ(record.systemCode(), QStringLiteral("osx"));
    EXPECT_EQ(record.messageText(), QString::fromUtf8("\xC3\xA9t\xC3\xA9 <b>"));
    EXPECT_EQ(recordOf("<contentData>SGVMTE8=</contentData>").messageText(), QStringLiteral("HeLLO"));
}

TEST(FeedParser, KeepsTheDefaultSizeForAutoInAnyCase)
{
    for (const QByteArray text : {"auto", "AUTO", "Auto"}) {
        const KivNotification record =
            recordOf("<contentWidth>" + text + "</contentWidth><contentHeight>" + text + "</contentHeight>");
        EXPECT_EQ(record.contentWidth(), 320.0F) << text.constData();
        EXPECT_EQ(record.contentHeight(), 0.0F) << text.constData();
    }
    EXPECT_EQ(recordOf("<contentWidth>280</contentWidth>").contentWidth(), 280.0F);
    EXPECT_EQ(recordOf("<contentWidth> 280.5px</contentWidth>").contentWidth(), 280.5F);
    EXPECT_EQ(recordOf("<contentWidth>wide</contentWidth>").contentWidth(), 0.0F);
}

TEST(FeedParser, ReadsTheRepeatCodeAsAnInteger)
{
    constexpr std::pair<const char *, std::uint32_t> codes[] = {
        {"0", 0}, {"5", 5}, {" 5 times", 5}, {"", 0}, {"never", 0}, {"-1", 4294967295U}, {"99999999999", 2147483647U}};
    for (const auto &[text, code] : codes) {
        EXPECT_EQ(recordOf(QByteArray("<messageRepeat>") + text + "</messageRepeat>").messageRepeat(), code) << text;
    }
}

TEST(FeedParser, TakesAnyForTheFirstDayAndForTheLast)
{
    const KivNotification record = recordOf("<minDate>Any</minDate><maxDate>ANY</maxDate>");
    EXPECT_EQ(record.minDate(), QDateTime::fromSecsSinceEpoch(0));
    EXPECT_EQ(record.maxDate(), distantFuture());
}

TEST(FeedParser, MakesADateThatIsNoneNil)
{
    const KivNotification record = recordOf("<minDate>tomorrow</minDate><maxDate>2011-05-20</maxDate>");
    EXPECT_FALSE(record.minDate().isValid());
    EXPECT_FALSE(record.maxDate().isValid());
}

TEST(FeedParser, RemovesTheDashesOfTheBuildDateOnly)
{
    EXPECT_EQ(recordOf("<buildDate>Any</buildDate>").buildDate(), QStringLiteral("any"));
    EXPECT_EQ(recordOf("<buildDate>--2011-05--</buildDate>").buildDate(), QStringLiteral("201105"));
    EXPECT_EQ(recordOf("<minVersion>3-1</minVersion>").minVersion(), QStringLiteral("3-1"));
}

TEST(FeedParser, MeasuresATextUnlessTheFeedGaveItsHeight)
{
    EXPECT_GT(recordOf("<messageText>text</messageText>").contentHeight(), 0.0F);
    EXPECT_EQ(recordOf("<contentHeight>7</contentHeight><messageText>text</messageText>").contentHeight(), 7.0F);
}

TEST(FeedParser, MakesAnEmptyElementAnEmptyTextAndNotNil)
{
    const KivNotification record = recordOf("<minVersion/><contentData></contentData>");
    EXPECT_FALSE(record.minVersion().isNull());
    EXPECT_TRUE(record.minVersion().isEmpty());
    EXPECT_FALSE(record.messageText().isNull());
}

TEST(FeedParser, MakesContentThatIsNotUtf8Nil)
{
    EXPECT_TRUE(recordOf("<contentData>/w==</contentData>").messageText().isNull());
}

TEST(FeedParser, KeepsWhiteSpaceEntitiesAndCharacterData)
{
    EXPECT_EQ(
        recordOf("<messageText> a\n &amp;<![CDATA[<b>&amp;]]>&#99;<!-- no --><?no no?> </messageText>").messageText(),
        QStringLiteral(" a\n &<b>&amp;c "));
}

TEST(FeedParser, IgnoresAttributesAndTheNamesAroundMessages)
{
    Feed feed;
    EXPECT_EQ(feed.parser.parse("<anything a='1'><group><title>x</title><contentData>/w==</contentData>"
                                "<supportMessage messageId='9' p:q='r'><messageId messageId='8'>1</messageId>"
                                "</supportMessage></group><end/></anything>"),
              Outcome::EndOfDocument);
    EXPECT_EQ(feed.ids(), (Ids{"1"}));
}

TEST(FeedParser, HandsRecordsOverInTheirOrder)
{
    Feed feed;
    EXPECT_EQ(feed.parser.parse(documentOf(message("<messageId>3</messageId>") + message("<messageId>1</messageId>") +
                                           message("<messageId>2</messageId>"))),
              Outcome::EndOfDocument);
    EXPECT_EQ(feed.ids(), (Ids{"3", "1", "2"}));
    EXPECT_EQ(feed.parser.notification(), nullptr);
}

TEST(FeedParser, ReadsADocumentWithoutMessages)
{
    Feed feed;
    EXPECT_EQ(feed.parser.parse("<supportMessages/>"), Outcome::EndOfDocument);
    EXPECT_TRUE(feed.records.empty());
}

TEST(FeedParser, HandsOverTheRecordsBeforeAMalformedSpot)
{
    const QByteArray good = message("<messageId>1</messageId>") + message("<messageId>2</messageId>");
    for (const QByteArray rest : {"<supportMessage><messageId>3</messageId>", "<supportMessage></wrong>", "&unknown;",
                                  "\xFF", "<", "\x01", "</supportMessages><more/>", "</supportMessages>text",
                                  "<a b='1' b='2'/>", "<!DOCTYPE a>", "</supportMessages><!DOCTYPE a>"}) {
        Feed feed;
        EXPECT_EQ(feed.parser.parse("<supportMessages>" + good + rest), Outcome::Malformed) << rest.constData();
        EXPECT_EQ(feed.ids(), (Ids{"1", "2"})) << rest.constData();
    }
}

TEST(FeedParser, RefusesWhatIsNoDocument)
{
    for (const QByteArray document : {"", " ", "text", "{}", "<?xml version='1.0'?>", " <?xml version='1.0'?><a/>"}) {
        Feed feed;
        EXPECT_EQ(feed.parser.parse(document), Outcome::Malformed) << document.constData();
    }
}

TEST(FeedParser, ReadsADocumentWhoseTypeDeclaresNothing)
{
    for (const QByteArray type :
         {"<!DOCTYPE supportMessages>", "<!DOCTYPE supportMessages SYSTEM 'file:///etc/passwd'>\n",
          "<?xml version='1.0'?>\n<!DOCTYPE a PUBLIC \"-//K//DTD a//EN\" 'http://127.0.0.1/[a>b]'><!-- a -->"}) {
        Feed feed;
        EXPECT_EQ(feed.parser.parse(type + "<a><supportMessage><messageId>1</messageId></supportMessage></a>"),
                  Outcome::EndOfDocument)
            << type.constData();
        EXPECT_EQ(feed.ids(), Ids{"1"}) << type.constData();

        Feed entities;
        EXPECT_EQ(entities.parser.parse(type + "<a><supportMessage><messageId>&e;</messageId></supportMessage></a>"),
                  Outcome::Malformed)
            << type.constData();
        EXPECT_EQ(entities.ids(), Ids{});
    }
    Feed latin1;
    EXPECT_EQ(latin1.parser.parse("<?xml version='1.0' encoding='ISO-8859-1'?><!DOCTYPE a>"
                                  "<a><supportMessage><messageId>\xE9</messageId></supportMessage></a>"),
              Outcome::EndOfDocument);
    EXPECT_EQ(latin1.ids(), Ids{"\xC3\xA9"});
}

TEST(FeedParser, RefusesADocumentTypeThatMayDeclareSomething)
{
    for (const QByteArray type :
         {"<!DOCTYPE a [<!ENTITY e 'text'>]>", "<!DOCTYPE a SYSTEM 'b>c' [<!ENTITY e 'text'>]>", "<!DOCTYPE a []>",
          "<!DOCTYPE a><!DOCTYPE a>", "<!DOCTYPE a", "<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/passwd'>]>",
          "<!DOCTYPE a [<!ENTITY % e SYSTEM 'file:///etc/passwd'> %e;]>"}) {
        Feed feed;
        EXPECT_EQ(feed.parser.parse(type + "<a><supportMessage><messageId>1</messageId></supportMessage></a>"),
                  Outcome::Malformed)
            << type.constData();
        EXPECT_TRUE(feed.records.empty());
    }
}

TEST(FeedParser, SaysOfEachDocumentThatItRefusesWhy)
{
    LogLines log;
    for (const QByteArray &document :
         {QByteArray("text"), QByteArray("<a>"), QByteArray("<a/><!DOCTYPE a>"), QByteArray("<!DOCTYPE a []><a/>"),
          QByteArray("<?xml version='1.0' encoding='UTF-8'?><a/>\xFF"), QByteArray("<a>").repeated(1000)}) {
        EXPECT_EQ(Feed().parser.parse(document), Outcome::Malformed) << document.constData();
        EXPECT_THAT(log.take(), testing::ElementsAre(testing::StartsWith("kiv.feed: the document is ")))
            << document.constData();
    }
}

TEST(FeedParser, RefusesADocumentTypeBeforeReadingIt)
{
    QByteArray type = "<!DOCTYPE a [";
    for (int i = 0; i < 40'000; ++i) {
        type += "<!ATTLIST a b" + QByteArray::number(i) + " CDATA #IMPLIED>";
    }
    type += "]>";
    QElapsedTimer time;
    time.start();
    EXPECT_EQ(Feed().parser.parse(type + "<a/>"), Outcome::Malformed);
    EXPECT_EQ(Feed().parser.parse("<a/>" + type), Outcome::Malformed);
    EXPECT_LT(time.elapsed(), 2000) << "reading it takes Qt many seconds";
}

TEST(FeedParser, LetsTheExceptionForAnUnknownElementOut)
{
    Feed feed;
    EXPECT_THROW(static_cast<void>(
                     feed.parser.parse(documentOf(message("<messageId>1</messageId>") + message("<color>red</color>") +
                                                  message("<messageId>3</messageId>")))),
                 UndefinedKeyException);
    EXPECT_EQ(feed.ids(), (Ids{"1"}));
    EXPECT_EQ(feed.parser.parse(documentOf(message("<messageId>4</messageId>"))), Outcome::EndOfDocument);
    EXPECT_EQ(feed.ids(), (Ids{"1", "4"}));
}

TEST(FeedParser, KnowsElementsOnlyAsTheyAreSpelt)
{
    for (const QByteArray element : {"messageid", "supportMessages", "x:messageId", "objectName"}) {
        Feed feed;
        EXPECT_THROW(static_cast<void>(feed.parser.parse(documentOf(message('<' + element + ">1</" + element + '>')))),
                     UndefinedKeyException)
            << element.constData();
    }
}

TEST(FeedParser, LetsAnExceptionOfTheOneWhoTakesTheRecordsOut)
{
    FeedParser parser([](const std::shared_ptr<KivNotification> &) { throw std::out_of_range("version"); });
    EXPECT_THROW(static_cast<void>(parser.parse(documentOf(message("")))), std::out_of_range);
}

TEST(FeedParser, StartsANewRecordForAMessageWithinAMessage)
{
    Feed feed;
    EXPECT_EQ(feed.parser.parse("<a><supportMessage><messageId>1</messageId><supportMessage><minVersion>2</minVersion>"
                                "</supportMessage><unheard>3</unheard></supportMessage></a>"),
              Outcome::EndOfDocument);
    EXPECT_EQ(feed.ids(), (Ids{""}));
    EXPECT_EQ(feed.records.front()->minVersion(), QStringLiteral("2"));
}

TEST(FeedParser, SetsAFieldToTheTextOfAnElementWithinIt)
{
    const KivNotification record = recordOf("<messageId>1<minVersion>2</minVersion>3</messageId>");
    EXPECT_EQ(record.minVersion(), QStringLiteral("2"));
    EXPECT_EQ(record.messageId(), QStringLiteral("2")); // The 3 comes when nothing is being read.
}

TEST(FeedParser, KeepsARecordOpenThatAMalformedDocumentLeftOpen)
{
    Feed feed;
    EXPECT_EQ(feed.parser.parse("<a><supportMessage><messageId>1</messageId>"), Outcome::Malformed);
    ASSERT_NE(feed.parser.notification(), nullptr);
    EXPECT_EQ(feed.parser.notification()->messageId(), QStringLiteral("1"));
    EXPECT_EQ(feed.parser.parse("<minVersion>2</minVersion>"), Outcome::EndOfDocument);
    EXPECT_EQ(feed.parser.notification()->minVersion(), QStringLiteral("2"));
}

TEST(FeedParser, ReadsTheUsualEncodings)
{
    const QString document =
        QString::fromUtf8("<a><supportMessage><messageId>\xC3\xA9</messageId></supportMessage></a>");
    const QByteArray utf16 = QByteArray(QStringEncoder(QStringConverter::Utf16LE).encode(document));
    const QByteArray declared =
        QByteArray(QStringEncoder(QStringConverter::Utf16BE)
                       .encode(QStringLiteral("<?xml version='1.0' encoding='UTF-16'?>") + document));
    const QByteArray utf32 =
        QByteArray(QStringEncoder(QStringConverter::Utf32, QStringConverter::Flag::WriteBom).encode(document));
    for (const QByteArray name : {"iso-8859-1", "ISO_8859-1", "latin1", "Latin-1", "iso-latin-1", "l1", "cp819"}) {
        Feed feed;
        EXPECT_EQ(feed.parser.parse("<?xml version='1.0' encoding='" + name + "'?>" + document.toLatin1()),
                  Outcome::EndOfDocument)
            << name.constData();
        EXPECT_EQ(feed.ids(), (Ids{"\xC3\xA9"})) << name.constData();
    }
    for (const QByteArray &bytes : {document.toUtf8(), "\xEF\xBB\xBF" + document.toUtf8(),
                                    "<?xml version='1.0' encoding='utf-8'?>" + document.toUtf8(),
                                    "<?xml version='1.0' encoding='ISO-8859-1'?>" + document.toLatin1(), utf16,
                                    "\xFF\xFE" + utf16, declared, "\xFE\xFF" + declared, utf32}) {
        Feed feed;
        EXPECT_EQ(feed.parser.parse(bytes), Outcome::EndOfDocument) << bytes.constData();
        EXPECT_EQ(feed.ids(), (Ids{"\xC3\xA9"})) << bytes.constData();
    }
}

TEST(FeedParser, RefusesOtherEncodings)
{
    for (const QByteArray encoding : {"UTF-7", "windows-1252", "ISO-2022-JP", "IBM037", "UTF-16", "none"}) {
        Feed feed;
        EXPECT_EQ(feed.parser.parse("<?xml version='1.0' encoding='" + encoding + "'?><a>" + message("") + "</a>"),
                  Outcome::Malformed)
            << encoding.constData();
        EXPECT_TRUE(feed.records.empty()) << encoding.constData();
    }
}

TEST(FeedParser, RefusesTooManyLevels)
{
    const auto nested = [](int levels) {
        return QByteArray("<a>").repeated(levels - 2) + message("<messageId>1</messageId>") +
               QByteArray("</a>").repeated(levels - 2);
    };
    Feed feed;
    EXPECT_EQ(feed.parser.parse(nested(100)), Outcome::EndOfDocument);
    EXPECT_EQ(feed.records.size(), 1U);
    EXPECT_EQ(feed.parser.parse(nested(101)), Outcome::Malformed);
    EXPECT_EQ(feed.records.size(), 1U);
}

TEST(FeedParser, ReadsNoMoreThanAThousandMessages)
{
    Feed feed;
    EXPECT_EQ(feed.parser.parse(documentOf(QByteArray("<supportMessage/>").repeated(1001))), Outcome::EndOfDocument);
    EXPECT_EQ(feed.records.size(), 1000U);
    EXPECT_EQ(feed.parser.notification(), nullptr);
}

TEST(FeedParser, KeepsOfAnEndlessContentWhatIsKeptOfALongOneAndReadsWhatComesBehindIt)
{
    const auto contentOf = [](const QByteArray &text) { return "<contentData>" + text.toBase64() + "</contentData>"; };
    const QByteArray lines = "<p>One line of a text.</p>\n";
    const QByteArray tooLong = lines.repeated(20'000);  // 0.5 MB.
    const QByteArray endless = lines.repeated(200'000); // 5 MB.
    Feed feed;
    EXPECT_EQ(feed.parser.parse(documentOf(message(contentOf(tooLong)) + message(contentOf(endless)) +
                                           message("<messageId>17</messageId>"))),
              Outcome::EndOfDocument);
    ASSERT_EQ(feed.records.size(), 3U);
    EXPECT_GT(feed.records[0]->messageText().size(), 200'000);
    EXPECT_EQ(feed.records[1]->messageText(), feed.records[0]->messageText());
    EXPECT_EQ(feed.records[2]->messageId(), QStringLiteral("17"));
}

TEST(FeedParser, ReadsOfAContentNoMoreThanTwiceTheLongestText)
{
    const auto contentBehind = [](qsizetype dots) {
        return recordOf("<contentData>" + QByteArray(dots, '.') + "QUJD</contentData>").messageText();
    };
    constexpr qsizetype limit = qsizetype{512} * 1024;
    EXPECT_EQ(contentBehind(limit - 4), QStringLiteral("ABC"));
    EXPECT_EQ(contentBehind(limit), QString());
}

TEST(FeedParser, KeepsOfEachFieldNoMoreThanMakesSense)
{
    constexpr qsizetype limit = qsizetype{64} * 1024;
    const QByteArray endless(10 * limit, '7');
    for (const char *name : {"minVersion", "maxVersion", "systemCode", "minSysVer", "maxSysVer", "contentEncoding",
                             "contentType", "buildDate"}) {
        const QByteArray element(name);
        const KivNotification record =
            recordOf('<' + element + '>' + endless + "</" + element + "><messageRepeat>3</messageRepeat>");
        const QString kept = record.exportToDictionary().value(QString::fromLatin1(name)).toString();
        EXPECT_EQ(kept, QString(limit, u'7')) << name;
        EXPECT_EQ(record.messageRepeat(), 3U) << "what comes behind it counts";
    }
    EXPECT_EQ(recordOf("<messageId>" + endless + "</messageId>").messageId(), QString(256, u'7'));
    // The parts of one text count together.
    EXPECT_EQ(recordOf("<contentType>" + endless + "<!-- -->" + endless + "<![CDATA[" + endless + "]]></contentType>")
                  .contentType()
                  .size(),
              limit);
}

TEST(FeedParser, KeepsOfATextWhatTheRecordKeepsOfALongOne)
{
    const QByteArray line = "<![CDATA[<p>One line of a text.</p>]]>\n";
    const KivNotification record = recordOf("<contentHeight>7</contentHeight><messageText>" + line.repeated(20'000) +
                                            "</messageText><messageRepeat>3</messageRepeat>");
    KivNotification other;
    other.setContentHeight(7);
    other.setMessageText(QStringLiteral("<p>one line of a text.</p>\n").repeated(20'000));
    EXPECT_GT(record.messageText().size(), 200'000);
    EXPECT_EQ(record.messageText(), other.messageText());
    EXPECT_EQ(record.messageRepeat(), 3U);
}

TEST(FeedParser, ReadsBitByBitWhatItReadsAtOnce)
{
    const QByteArray document = documentOf(message("<messageId>1</messageId>") + message("<messageId>2</messageId>"));
    Feed feed;
    feed.parser.begin(document);
    std::optional<Outcome> outcome;
    int bits = 0;
    for (; !outcome; ++bits) {
        outcome = feed.parser.read(QDeadlineTimer(0));
    }
    EXPECT_EQ(outcome, Outcome::EndOfDocument);
    EXPECT_GT(bits, 8) << "one for each tag at least";
    ASSERT_EQ(feed.records.size(), 2U);
    EXPECT_EQ(feed.records.front()->messageId(), QStringLiteral("1"));
    EXPECT_EQ(feed.records.back()->messageId(), QStringLiteral("2"));
}

TEST(FeedParser, RefusesTooManyAttributesInAnyEncoding)
{
    const auto tag = [](int attributes) {
        QByteArray text = message("<messageId>1</messageId>") + "<b";
        for (int i = 0; i < attributes; ++i) {
            text += " a" + QByteArray::number(i) + "='>'";
        }
        return documentOf(text + "/>" + message("<messageId>2</messageId>"));
    };
    const auto utf16 = [](const QByteArray &document) {
        return QByteArray(QStringEncoder(QStringConverter::Utf16).encode(QString::fromUtf8(document)));
    };
    for (const QByteArray &document : {tag(64), utf16(tag(64))}) {
        Feed feed;
        EXPECT_EQ(feed.parser.parse(document), Outcome::EndOfDocument);
        EXPECT_EQ(feed.ids(), (Ids{"1", "2"}));
    }
    for (const QByteArray &document : {tag(65), utf16(tag(65)), tag(100'000)}) {
        Feed feed;
        EXPECT_EQ(feed.parser.parse(document), Outcome::Malformed);
        EXPECT_EQ(feed.ids(), (Ids{"1"}));
    }
}

TEST(FeedParser, IsNotDoneWithADocumentWhoseEndItCannotRead)
{
    QByteArray crowded = "<b";
    for (int i = 0; i < 65; ++i) {
        crowded += " a" + QByteArray::number(i) + "=''";
    }
    for (const QByteArray &rest : {crowded + "/>", QByteArray("\xFF")}) {
        Feed feed;
        EXPECT_EQ(feed.parser.parse("<a/>" + rest), Outcome::Malformed) << rest.constData();
    }
}

} // namespace
