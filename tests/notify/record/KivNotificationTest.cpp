#include "notify/record/KivNotification.h"

#include "notify/record/DistantFuture.h"
#include "notify/record/UndefinedKeyException.h"
#include "platform/data/PropertyList.h"
#include "platform/data/UtcTime.h"
#include "platform/text/TextMeasure.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

constexpr std::int32_t intMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t intMax = std::numeric_limits<std::int32_t>::max();

const QDateTime epoch(QDate(1970, 1, 1), QTime(0, 0), inUtc);
const QString nil;
const QString empty = QLatin1String("");

/// A record whose every field differs from its default.
KivNotification filledRecord()
{
    KivNotification record;
    record.setMessageId(QStringLiteral("17"));
    record.setMessageType(3);
    record.setMessageLevel(1);
    record.setMessageRepeat(5);
    record.setMessagePriority(2);
    record.setProductCode(1);
    record.setLicenseType(0);
    record.setMinVersion(QStringLiteral("3.1"));
    record.setMaxVersion(QStringLiteral("3.9"));
    record.setBuildDate(QStringLiteral("20110520"));
    record.setSystemCode(QStringLiteral("osx"));
    record.setMinSysVer(QStringLiteral("10.6"));
    record.setMaxSysVer(QStringLiteral("10.9"));
    record.setMinDate(QDateTime(QDate(2011, 5, 20), QTime(5, 0), inUtc));
    record.setMaxDate(QDateTime(QDate(2012, 5, 20), QTime(4, 0), inUtc));
    record.setLastShowDate(QDateTime(QDate(2011, 6, 1), QTime(12, 30, 15), inUtc));
    record.setContentEncoding(QStringLiteral("none"));
    record.setContentType(QStringLiteral("text/html"));
    record.setContentWidth(250.5F);
    record.setContentHeight(33.3F);
    record.setMessageText(QStringLiteral("Gr\u00FC\u00DFe \U0001F600\nline two"));
    record.setWasDisplayed(true);
    return record;
}

QVariantMap filledDictionary()
{
    return {
        {QStringLiteral("messageId"), QStringLiteral("17")},
        {QStringLiteral("messageType"), 3},
        {QStringLiteral("messageLevel"), 1},
        {QStringLiteral("messageRepeat"), 5},
        {QStringLiteral("messagePriority"), 2},
        {QStringLiteral("productCode"), 1},
        {QStringLiteral("licenseType"), 0},
        {QStringLiteral("minVersion"), QStringLiteral("3.1")},
        {QStringLiteral("maxVersion"), QStringLiteral("3.9")},
        {QStringLiteral("buildDate"), QStringLiteral("20110520")},
        {QStringLiteral("systemCode"), QStringLiteral("osx")},
        {QStringLiteral("minSysVer"), QStringLiteral("10.6")},
        {QStringLiteral("maxSysVer"), QStringLiteral("10.9")},
        {QStringLiteral("minDate"), QDateTime(QDate(2011, 5, 20), QTime(5, 0), inUtc)},
        {QStringLiteral("maxDate"), QDateTime(QDate(2012, 5, 20), QTime(4, 0), inUtc)},
        {QStringLiteral("lastShowDate"), QDateTime(QDate(2011, 6, 1), QTime(12, 30, 15), inUtc)},
        {QStringLiteral("contentEncoding"), QStringLiteral("none")},
        {QStringLiteral("contentType"), QStringLiteral("text/html")},
        {QStringLiteral("contentWidth"), 250.5F},
        {QStringLiteral("contentHeight"), 33.3F},
        {QStringLiteral("messageText"), QStringLiteral("Gr\u00FC\u00DFe \U0001F600\nline two")},
    };
}

KivNotification imported(const QString &key, const QVariant &value)
{
    return KivNotification(QVariantMap{{key, value}});
}

KivNotification withId(const QString &messageId, std::int32_t priority = 1)
{
    KivNotification record;
    record.setMessageId(messageId);
    record.setMessagePriority(priority);
    return record;
}

} // namespace

TEST(KivNotification, StartsWithItsDefaults)
{
    const KivNotification record;
    EXPECT_EQ(record.messageId(), empty);
    EXPECT_FALSE(record.messageId().isNull());
    EXPECT_EQ(record.messageType(), 1);
    EXPECT_EQ(record.messageTypeString(), QStringLiteral("Information"));
    EXPECT_EQ(record.messageLevel(), 2);
    EXPECT_EQ(record.messageRepeat(), 1U);
    EXPECT_EQ(record.messagePriority(), 1);
    EXPECT_EQ(record.productCode(), 2);
    EXPECT_EQ(record.licenseType(), 2);
    EXPECT_EQ(record.minVersion(), QStringLiteral("any"));
    EXPECT_EQ(record.maxVersion(), QStringLiteral("any"));
    EXPECT_EQ(record.buildDate(), QStringLiteral("any"));
    EXPECT_EQ(record.systemCode(), empty);
    EXPECT_FALSE(record.systemCode().isNull());
    EXPECT_EQ(record.minSysVer(), QStringLiteral("any"));
    EXPECT_EQ(record.maxSysVer(), QStringLiteral("any"));
    EXPECT_EQ(record.minDate(), epoch);
    EXPECT_EQ(record.maxDate(), epoch);
    EXPECT_EQ(record.lastShowDate(), epoch);
    EXPECT_EQ(record.contentEncoding(), QStringLiteral("base64"));
    EXPECT_EQ(record.contentType(), QStringLiteral("text/plain"));
    EXPECT_EQ(record.contentWidth(), 320.0F);
    EXPECT_EQ(record.contentHeight(), 0.0F);
    EXPECT_EQ(record.messageText(), empty);
    EXPECT_FALSE(record.messageText().isNull());
    EXPECT_FALSE(record.wasDisplayed());
}

TEST(KivNotification, KeepsTheBeginningOfAnIdThatIsTooLong)
{
    const QString longest(256, u'7');
    EXPECT_EQ(withId(longest).messageId(), longest);
    EXPECT_EQ(withId(longest + QStringLiteral("89")).messageId(), longest);
    EXPECT_EQ(imported(QStringLiteral("messageId"), QString(300'000, u'7')).messageId(), longest);
    EXPECT_TRUE(withId(nil).messageId().isNull());
}

TEST(KivNotification, TakesItsTitleFromItsType)
{
    KivNotification record;
    const char *titles[] = {"New update", "Information", "Read news", "Warning"};
    for (std::int32_t type = 0; type < 4; ++type) {
        record.setMessageType(type);
        EXPECT_EQ(record.messageType(), type);
        EXPECT_EQ(record.messageTypeString(), QString::fromLatin1(titles[type]));
    }
}

TEST(KivNotification, KeepsItsTitleForATypeThatHasNone)
{
    for (const std::int32_t type : {4, 5, intMax, -1, intMin}) {
        KivNotification record;
        record.setMessageType(3);
        record.setMessageType(type);
        EXPECT_EQ(record.messageType(), type);
        EXPECT_EQ(record.messageTypeString(), QStringLiteral("Warning")) << type;
    }
}

TEST(KivNotification, MeasuresTheFirstTextAndKeepsThatHeight)
{
    const QString text = QStringLiteral("A sentence that is repeated. ").repeated(20);
    KivNotification record;
    record.setMessageText(text);
    EXPECT_GT(record.contentHeight(), textHeight(QStringLiteral("A"), 320));
    EXPECT_EQ(record.contentHeight(), textHeight(text, 320));

    record.setMessageText(QStringLiteral("short"));
    EXPECT_EQ(record.messageText(), QStringLiteral("short"));
    EXPECT_EQ(record.contentHeight(), textHeight(text, 320));
}

TEST(KivNotification, MeasuresAgainWhenTheHeightIsSetToZero)
{
    KivNotification record;
    record.setMessageText(QStringLiteral("one"));
    record.setContentHeight(0);
    record.setMessageText(QStringLiteral("one\ntwo"));
    EXPECT_EQ(record.contentHeight(), textHeight(QStringLiteral("one\ntwo"), 320));
}

TEST(KivNotification, DoesNotMeasureWithoutTextOrWithAHeightSet)
{
    KivNotification record;
    record.setMessageText(empty);
    EXPECT_EQ(record.contentHeight(), 0);
    record.setMessageText(nil);
    EXPECT_EQ(record.contentHeight(), 0);
    EXPECT_TRUE(record.messageText().isNull());
    record.setContentHeight(-5);
    record.setMessageText(QStringLiteral("text"));
    EXPECT_EQ(record.contentHeight(), -5);
}

TEST(KivNotification, MeasuresAtItsContentWidth)
{
    const QString text = QStringLiteral("word ").repeated(40);
    KivNotification record;
    record.setContentWidth(100);
    EXPECT_EQ(record.getTextHeight(text), textHeight(text, 100));
    EXPECT_NE(record.getTextHeight(text), textHeight(text, 320));
    EXPECT_EQ(record.getTextHeight(nil), 0);
}

TEST(KivNotification, ExportsItsFields)
{
    EXPECT_EQ(filledRecord().exportToDictionary(), filledDictionary());
}

TEST(KivNotification, ExportsTheUnsignedRepeatCodeAsASignedNumber)
{
    KivNotification record;
    record.setMessageRepeat(4294967295U);
    const QVariantMap dictionary = record.exportToDictionary();
    EXPECT_EQ(dictionary[QStringLiteral("messageRepeat")], QVariant(-1));
    EXPECT_EQ(KivNotification(dictionary).messageRepeat(), 4294967295U);
}

TEST(KivNotification, EndsItsExportBeforeTheFirstNilField)
{
    const QStringList order = {
        QStringLiteral("messageId"),     QStringLiteral("messageType"),     QStringLiteral("messageLevel"),
        QStringLiteral("messageRepeat"), QStringLiteral("messagePriority"), QStringLiteral("productCode"),
        QStringLiteral("licenseType"),   QStringLiteral("minVersion"),      QStringLiteral("maxVersion"),
        QStringLiteral("buildDate"),     QStringLiteral("systemCode"),      QStringLiteral("minSysVer"),
        QStringLiteral("maxSysVer"),     QStringLiteral("minDate"),         QStringLiteral("maxDate"),
        QStringLiteral("lastShowDate"),  QStringLiteral("contentEncoding"), QStringLiteral("contentType"),
        QStringLiteral("contentWidth"),  QStringLiteral("contentHeight"),   QStringLiteral("messageText"),
    };
    const QVariantMap whole = filledRecord().exportToDictionary();
    for (qsizetype i = 0; i < order.size(); ++i) {
        const int type = whole[order[i]].typeId();
        if (type != QMetaType::QString && type != QMetaType::QDateTime) {
            continue;
        }
        KivNotification record = filledRecord();
        record.setValueForKey(order[i], QVariant());
        QVariantMap expected;
        for (const QString &key : order.first(i)) {
            expected.insert(key, whole[key]);
        }
        EXPECT_EQ(record.exportToDictionary(), expected) << order[i].toStdString();
    }
}

TEST(KivNotification, ExportsEmptyStrings)
{
    const QVariantMap dictionary = KivNotification().exportToDictionary();
    EXPECT_EQ(dictionary.size(), 21);
    EXPECT_EQ(dictionary[QStringLiteral("messageId")], QVariant(empty));
    EXPECT_EQ(dictionary[QStringLiteral("messageText")], QVariant(empty));
}

TEST(KivNotification, ComesBackFromItsDictionaryForm)
{
    const KivNotification record(filledDictionary());
    EXPECT_EQ(record.exportToDictionary(), filledDictionary());
    EXPECT_EQ(record.messageTypeString(), QStringLiteral("Warning"));
    EXPECT_FALSE(record.wasDisplayed());
}

TEST(KivNotification, ComesBackFromAFile)
{
    const KivNotification record(PropertyList::read(PropertyList::toXml(filledDictionary())).toMap());
    EXPECT_EQ(record.exportToDictionary(), filledDictionary());
    const KivNotification fresh(
        PropertyList::read(PropertyList::toXml(KivNotification().exportToDictionary())).toMap());
    EXPECT_EQ(fresh.exportToDictionary(), KivNotification().exportToDictionary());
    EXPECT_FALSE(fresh.messageId().isNull());
}

TEST(KivNotification, StaysValidForEverThroughAFile)
{
    KivNotification record;
    record.setMaxDate(distantFuture());
    const KivNotification read(PropertyList::read(PropertyList::toXml(record.exportToDictionary())).toMap());
    EXPECT_EQ(read.maxDate(), QDateTime(QDate(9999, 12, 31), QTime(23, 59, 59), inUtc));
}

TEST(KivNotification, KeepsDefaultsForMissingKeys)
{
    EXPECT_EQ(KivNotification(QVariantMap()).exportToDictionary(), KivNotification().exportToDictionary());
}

TEST(KivNotification, ReadsCodesFromNumbersAndText)
{
    struct Case {
        QVariant value;
        std::int32_t code;
    };
    const Case cases[] = {
        {3, 3},
        {QVariant::fromValue<qlonglong>(3), 3},
        {3.9, 3},
        {QStringLiteral("3"), 3},
        {QStringLiteral(" 3rd"), 3},
        {QStringLiteral("high"), 0},
        {true, 1},
        {-7, -7},
        {QVariant::fromValue<qlonglong>(1LL << 40), intMax},
        {QVariant::fromValue<qlonglong>(-(1LL << 40)), intMin},
        {QVariant::fromValue<qulonglong>(~0ULL), intMax},
        {std::numeric_limits<double>::quiet_NaN(), 0},
        {std::numeric_limits<double>::infinity(), intMax},
        {QStringLiteral("-99999999999999999999"), intMin},
        {epoch, 0},
        {QVariantMap(), 0},
    };
    for (const Case &c : cases) {
        const std::string name = c.value.toString().toStdString();
        EXPECT_EQ(imported(QStringLiteral("messageType"), c.value).messageType(), c.code) << name;
        EXPECT_EQ(imported(QStringLiteral("messageLevel"), c.value).messageLevel(), c.code) << name;
        EXPECT_EQ(imported(QStringLiteral("messagePriority"), c.value).messagePriority(), c.code) << name;
        EXPECT_EQ(imported(QStringLiteral("productCode"), c.value).productCode(), c.code) << name;
        EXPECT_EQ(imported(QStringLiteral("licenseType"), c.value).licenseType(), c.code) << name;
        EXPECT_EQ(imported(QStringLiteral("messageRepeat"), c.value).messageRepeat(),
                  static_cast<std::uint32_t>(c.code))
            << name;
    }
}

TEST(KivNotification, KeepsItsDefaultTitleForAnImportedTypeThatHasNone)
{
    for (const std::int32_t type : {-1, intMin, 4, intMax}) {
        EXPECT_EQ(imported(QStringLiteral("messageType"), type).messageTypeString(), QStringLiteral("Information"));
    }
}

TEST(KivNotification, KeepsTheDefaultLengthsForZero)
{
    for (const QVariant &zero : {QVariant(0), QVariant(0.0), QVariant(-0.0), QVariant(QStringLiteral("0")),
                                 QVariant(QStringLiteral("auto")), QVariant(false)}) {
        EXPECT_EQ(imported(QStringLiteral("contentWidth"), zero).contentWidth(), 320.0F);
        EXPECT_EQ(imported(QStringLiteral("contentHeight"), zero).contentHeight(), 0.0F);
    }
    EXPECT_EQ(imported(QStringLiteral("contentWidth"), 250).contentWidth(), 250.0F);
    EXPECT_EQ(imported(QStringLiteral("contentHeight"), QStringLiteral("12.5")).contentHeight(), 12.5F);
    EXPECT_EQ(imported(QStringLiteral("contentWidth"), -1).contentWidth(), -1.0F);
}

TEST(KivNotification, TakesALengthThatIsNoNumber)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    KivNotification record = imported(QStringLiteral("contentWidth"), nan);
    EXPECT_TRUE(std::isnan(record.contentWidth()));
    record.setMessageText(QStringLiteral("text"));
    EXPECT_EQ(record.contentHeight(), textHeight(QStringLiteral("text"), 320));
}

TEST(KivNotification, MeasuresAnImportedTextAtTheImportedWidthUnlessItHasAHeight)
{
    const QString text = QStringLiteral("word ").repeated(40);
    QVariantMap dictionary = {{QStringLiteral("messageText"), text}, {QStringLiteral("contentWidth"), 100}};
    EXPECT_EQ(KivNotification(dictionary).contentHeight(), textHeight(text, 100));
    dictionary.insert(QStringLiteral("contentHeight"), 0);
    EXPECT_EQ(KivNotification(dictionary).contentHeight(), textHeight(text, 100));
    dictionary.insert(QStringLiteral("contentHeight"), 5);
    EXPECT_EQ(KivNotification(dictionary).contentHeight(), 5);
}

TEST(KivNotification, RefusesAnUnknownKeyByName)
{
    for (const char *key : {"colour", "", "m_messageId", "MessageId", "contentData", "gr\u00FC\u00DFe"}) {
        KivNotification record;
        try {
            record.setValueForKey(QString::fromUtf8(key), QStringLiteral("x"));
            FAIL() << key;
        } catch (const UndefinedKeyException &exception) {
            EXPECT_STREQ(exception.what(), ("undefined key: " + std::string(key)).c_str());
        }
        EXPECT_THROW(imported(QString::fromUtf8(key), 1), UndefinedKeyException) << key;
    }
}

TEST(KivNotification, SetsEveryPropertyByItsName)
{
    KivNotification record;
    const QVariantMap dictionary = filledDictionary();
    for (auto entry = dictionary.cbegin(); entry != dictionary.cend(); ++entry) {
        record.setValueForKey(entry.key(), entry.value());
    }
    EXPECT_EQ(record.exportToDictionary(), dictionary);
    record.setValueForKey(QStringLiteral("messageTypeString"), QStringLiteral("Title"));
    EXPECT_EQ(record.messageTypeString(), QStringLiteral("Title"));
    record.setValueForKey(QStringLiteral("wasDisplayed"), QStringLiteral("YES"));
    EXPECT_TRUE(record.wasDisplayed());
    record.setValueForKey(QStringLiteral("wasDisplayed"), 0);
    EXPECT_FALSE(record.wasDisplayed());
}

TEST(KivNotification, RunsTheSettersWhenSetByName)
{
    KivNotification record;
    record.setValueForKey(QStringLiteral("messageType"), QStringLiteral("2"));
    EXPECT_EQ(record.messageTypeString(), QStringLiteral("Read news"));
    record.setValueForKey(QStringLiteral("messageText"), QStringLiteral("text"));
    EXPECT_GT(record.contentHeight(), 0);
    record.setValueForKey(QStringLiteral("contentWidth"), 0);
    EXPECT_EQ(record.contentWidth(), 0) << "only an import keeps the default";
}

TEST(KivNotification, LeavesTextAndDatesAloneWhenTheValueIsOfAnotherType)
{
    KivNotification record = filledRecord();
    record.setValueForKey(QStringLiteral("messageId"), 18);
    record.setValueForKey(QStringLiteral("minDate"), QStringLiteral("2020-01-01T00:00:00Z"));
    record.setValueForKey(QStringLiteral("lastShowDate"), 5.0);
    record.setValueForKey(QStringLiteral("messageText"), QVariantMap());
    EXPECT_EQ(record.exportToDictionary(), filledDictionary());
}

TEST(KivNotification, TakesNilForTextAndDates)
{
    KivNotification record = filledRecord();
    record.setValueForKey(QStringLiteral("messageText"), QVariant());
    record.setValueForKey(QStringLiteral("maxDate"), QVariant());
    EXPECT_TRUE(record.messageText().isNull());
    EXPECT_FALSE(record.maxDate().isValid());
}

TEST(KivNotification, EqualsAnotherOfTheSameId)
{
    KivNotification other;
    other.setMessageId(QStringLiteral("17"));
    EXPECT_TRUE(filledRecord().isEqual(other));
    EXPECT_TRUE(other.isEqual(filledRecord()));
    EXPECT_TRUE(other.isEqual(other));
    other.setMessageId(QStringLiteral("017"));
    EXPECT_FALSE(filledRecord().isEqual(other));
}

TEST(KivNotification, IsNeverEqualToAnInstantRecordWithoutId)
{
    const KivNotification instant = withId(empty, 3);
    EXPECT_FALSE(instant.isEqual(instant));
    EXPECT_FALSE(instant.isEqual(withId(empty, 3)));
    EXPECT_FALSE(withId(empty).isEqual(instant));
    EXPECT_TRUE(instant.isEqual(withId(empty))) << "only the other's priority counts";
    EXPECT_TRUE(withId(QStringLiteral("17")).isEqual(withId(QStringLiteral("17"), 3)));
}

TEST(KivNotification, IsEqualToNothingWithoutAnyId)
{
    EXPECT_FALSE(withId(nil).isEqual(withId(nil)));
    EXPECT_FALSE(withId(nil).isEqual(withId(empty)));
    EXPECT_FALSE(withId(empty).isEqual(withId(nil)));
}

TEST(KivNotification, DescribesAFreshRecord)
{
    EXPECT_EQ(KivNotification().description().toStdString(), "---------------------------- \n"
                                                             " Id:  \n"
                                                             " minV: any \n"
                                                             " maxV: any \n"
                                                             " sCode:  \n"
                                                             " minSV: any \n"
                                                             " maxSV: any \n"
                                                             " minD: 1970-01-01 00:00:00 +0000 \n"
                                                             " maxD: 1970-01-01 00:00:00 +0000 \n"
                                                             " shownD: 1970-01-01 00:00:00 +0000 \n"
                                                             " mseType: 1 \n"
                                                             " mesText:  level: 2, priority: 1, repeate: 1 \n"
                                                             "----------------------------");
}

TEST(KivNotification, DescribesEveryFieldInItsPlace)
{
    KivNotification record = filledRecord();
    record.setMessageRepeat(4294967295U);
    record.setMessageText(QStringLiteral("caf\u00E9"));
    record.setMaxDate(QDateTime(QDate(2012, 5, 20), QTime(2, 0), inUtc).toOffsetFromUtc(7200));
    EXPECT_EQ(record.description().toStdString(), "---------------------------- \n"
                                                  " Id: 17 \n"
                                                  " minV: 3.1 \n"
                                                  " maxV: 3.9 \n"
                                                  " sCode: osx \n"
                                                  " minSV: 10.6 \n"
                                                  " maxSV: 10.9 \n"
                                                  " minD: 2011-05-20 05:00:00 +0000 \n"
                                                  " maxD: 2012-05-20 02:00:00 +0000 \n"
                                                  " shownD: 2011-06-01 12:30:15 +0000 \n"
                                                  " mseType: 3 \n"
                                                  " mesText: caf\u00E9 level: 1, priority: 2, repeate: -1 \n"
                                                  "----------------------------");
}

TEST(KivNotification, DescribesNilAndTheDistantFuture)
{
    KivNotification record;
    record.setMessageId(nil);
    record.setMinDate(QDateTime());
    record.setMaxDate(distantFuture());
    record.setMessageText(nil);
    const std::string text = record.description().toStdString();
    EXPECT_NE(text.find(" Id: (null) \n"), std::string::npos) << text;
    EXPECT_NE(text.find(" minD: (null) \n maxD: 1000000-01-01 00:00:00 +0000 \n"), std::string::npos) << text;
    EXPECT_NE(text.find(" mesText: (null) level"), std::string::npos) << text;
}

TEST(KivNotification, KeepsTheFirst64KilobytesOfATextAndAnEllipsisForTheRest)
{
    constexpr qsizetype maxSize = qsizetype{64} * 1024;
    struct Text {
        const char *what;
        QString character;
        qsizetype kept; ///< Characters.
    };
    for (const Text &text :
         {Text{"one byte each", QStringLiteral("a"), maxSize}, Text{"two", QStringLiteral("é"), maxSize / 2},
          Text{"three", QStringLiteral("€"), maxSize / 3}, Text{"four", QStringLiteral("😀"), maxSize / 4}}) {
        KivNotification record;
        record.setContentHeight(1); // Not to be measured.
        record.setMessageText(text.character.repeated(text.kept));
        EXPECT_EQ(record.messageText().size(), text.character.size() * text.kept) << text.what;
        record.setMessageText(text.character.repeated(text.kept + 1));
        const QString shortened = text.character.repeated(text.kept) + QStringLiteral("…");
        EXPECT_EQ(record.messageText(), shortened) << text.what;
        record.setMessageText(record.messageText());
        EXPECT_EQ(record.messageText(), shortened) << text.what << ", read back from the file";
    }
}

TEST(KivNotification, KeepsFourTimesAsMuchOfHtmlAndCutsNoTag)
{
    constexpr qsizetype maxSize = qsizetype{256} * 1024;
    const QString tag = QStringLiteral("<p style='color: #333333; font: 16px Arial'>");
    const QString html = tag.repeated(maxSize / tag.size());
    KivNotification record;
    record.setContentHeight(1);
    record.setMessageText(html);
    EXPECT_EQ(record.messageText(), html);
    record.setMessageText(html + tag);
    EXPECT_EQ(record.messageText(), html + QStringLiteral("…"));
    record.setMessageText(record.messageText());
    EXPECT_EQ(record.messageText(), html + QStringLiteral("…")) << "read back from the file";
    record.setMessageText(QLatin1Char('<') + QString(maxSize, u'>'));
    EXPECT_EQ(record.messageText(), QLatin1Char('<') + QString(maxSize - 1, u'>') + QStringLiteral("…"));
    record.setMessageText(QLatin1Char(' ') + html);
    EXPECT_EQ(record.messageText().size(), 64 * 1024 + 1) << "with a blank in front it is plain";
}
