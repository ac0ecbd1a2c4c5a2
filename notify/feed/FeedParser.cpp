#include "notify/feed/FeedParser.h"

#include "notify/feed/ContentData.h"
#include "notify/feed/FeedDate.h"
#include "notify/feed/FeedTokens.h"
#include "notify/feed/LowerCase.h"
#include "notify/record/DistantFuture.h"
#include "notify/record/FeedVocabulary.h"
#include "notify/record/KivNotification.h"
#include "notify/record/MessageText.h"
#include "platform/LogCategories.h"
#include "platform/data/StringValues.h"
#include "platform/data/TextBeginning.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

namespace
{

/// Of a field that is no text to be shown: so little that no message alone fills the file of those that wait.
constexpr qsizetype maxField = maxTextBytes;

/// A word of the feed, and the code that a record keeps for it.
struct CodeWord {
    QLatin1String word;
    std::int32_t code;
};

/// A field that has one of these words; another leaves it alone.
struct CodeField {
    QLatin1String element;
    std::span<const CodeWord> words;
    void (KivNotification::*set)(std::int32_t);
};

constexpr std::array typeWords{CodeWord{kMsgPropertyUpdate, kTypeUpdate}, CodeWord{kMsgPropertyNotice, kTypeNotice},
                               CodeWord{kMsgPropertyNews, kTypeNews}, CodeWord{kMsgPropertyWarning, kTypeWarning}};
constexpr std::array levelWords{CodeWord{kMsgPropertyUser, kLevelUser}, CodeWord{kMsgPropertyAdmin, kLevelAdmin},
                                CodeWord{kMsgPropertyAny, kLevelAny}};
constexpr std::array priorityWords{CodeWord{kMsgPropertyLow, kPriorityLow},
                                   CodeWord{kMsgPropertyMedium, kPriorityMedium},
                                   CodeWord{kMsgPropertyHigh, kPriorityHigh}};
constexpr std::array productWords{CodeWord{kMsgPropertyKivune, kProductKivune},
                                  CodeWord{kMsgPropertyKivuneTS, kProductKivuneTS},
                                  CodeWord{kMsgPropertyAny, kProductAny}};
constexpr std::array licenseWords{CodeWord{kMsgPropertyTrial, kLicenseTrial}, CodeWord{kMsgPropertyPaid, kLicensePaid},
                                  CodeWord{kMsgPropertyAny, kLicenseAny}};

constexpr std::array codeFields{
    CodeField{kMessageTypeKey, typeWords, &KivNotification::setMessageType},
    CodeField{kMessageLevelKey, levelWords, &KivNotification::setMessageLevel},
    CodeField{kMessagePriorityKey, priorityWords, &KivNotification::setMessagePriority},
    CodeField{kProductCodeKey, productWords, &KivNotification::setProductCode},
    CodeField{kLicenseTypeKey, licenseWords, &KivNotification::setLicenseType},
};

} // namespace

struct FeedParser::Reading {
    FeedTokens document;
    std::size_t next = 0; ///< Of its tokens.
};

FeedParser::FeedParser(Handover handover)
    : m_handover(std::move(handover))
{
}

FeedParser::~FeedParser() = default;

FeedParser::Outcome FeedParser::parse(const QByteArray &document)
{
    begin(document);
    return *read(QDeadlineTimer(QDeadlineTimer::Forever));
}

std::shared_ptr<FeedParser::Reading> FeedParser::open(const QByteArray &document)
{
    return std::make_shared<Reading>(Reading{.document = feedTokens(document)});
}

void FeedParser::begin(const QByteArray &document)
{
    begin(open(document));
}

void FeedParser::begin(std::shared_ptr<Reading> reading)
{
    m_reading = std::move(reading);
}

std::optional<FeedParser::Outcome> FeedParser::read(const QDeadlineTimer &share)
{
    // Over, unless it is put back: after an exception, too.
    std::shared_ptr<Reading> reading = std::move(m_reading);
    std::optional<Outcome> outcome;
    do {
        outcome = readNext(*reading);
    } while (!outcome && !share.hasExpired());
    if (!outcome) {
        m_reading = std::move(reading);
    }
    return outcome;
}

std::optional<FeedParser::Outcome> FeedParser::readNext(Reading &reading)
{
    FeedTokens &document = reading.document;
    if (reading.next == document.tokens.size()) {
        if (!document.remark.isNull()) {
            qCDebug(feedLog).noquote() << document.remark;
        }
        return document.isMalformed ? Outcome::Malformed : Outcome::EndOfDocument;
    }
    const FeedToken token = std::move(document.tokens[reading.next++]); // Not all to be freed in one turn.
    switch (token.kind) {
    case FeedToken::Kind::StartElement:
        didStartElement(token.text);
        break;
    case FeedToken::Kind::Characters:
        foundCharacters(token.text);
        break;
    case FeedToken::Kind::EndElement:
        didEndElement(token.text);
        break;
    }
    return std::nullopt;
}

void FeedParser::didStartElement(QStringView name)
{
    if (name == kSupportMessageKey) {
        m_notification = std::make_shared<KivNotification>();
    } else {
        m_readingChars = true;
        m_currentChars = QStringLiteral("");
    }
}

void FeedParser::foundCharacters(QStringView characters)
{
    if (m_readingChars) {
        m_currentChars += characters;
    }
}

void FeedParser::didEndElement(QStringView name)
{
    if (!m_notification) {
        // Outside a message no element means anything.
    } else if (name == kSupportMessageKey) {
        m_handover(m_notification);
        m_notification = nullptr;
    } else {
        setField(name);
    }
    m_readingChars = false;
}

void FeedParser::setField(QStringView element)
{
    // Everything but the content is lowercased, ids and plain texts included: the feed's authors write words, versions
    // and ids in either case.
    if (element != kContentDataKey) {
        const bool isToBeShown = element == kMessageTextKey;
        m_currentChars = lowerCase(isToBeShown ? m_currentChars : beginningOf(m_currentChars, maxField));
    }
    const QString &text = m_currentChars;
    KivNotification &record = *m_notification;
    const auto code = std::find_if(codeFields.begin(), codeFields.end(),
                                   [element](const CodeField &field) { return field.element == element; });
    if (code != codeFields.end()) {
        const auto word = std::find_if(code->words.begin(), code->words.end(),
                                       [&text](const CodeWord &known) { return known.word == text; });
        if (word != code->words.end()) {
            (record.*code->set)(word->code);
        }
    } else if (element == kMessageRepeatKey) {
        record.setMessageRepeat(static_cast<std::uint32_t>(StringValues::intValue(text)));
    } else if (element == kBuildDateKey) {
        record.setBuildDate(QString(text).remove(u'-'));
    } else if (element == kMinDateKey) {
        if (text != kMsgPropertyAny) {
            record.setMinDate(dateFromString(text));
        }
    } else if (element == kMaxDateKey) {
        record.setMaxDate(text == kMsgPropertyAny ? distantFuture() : dateFromString(text));
    } else if (element == kContentWidthKey) {
        if (text != kMsgPropertyAuto) {
            record.setContentWidth(StringValues::floatValue(text));
        }
    } else if (element == kContentHeightKey) {
        if (text != kMsgPropertyAuto) {
            record.setContentHeight(StringValues::floatValue(text));
        }
    } else if (element == kContentDataKey) {
        record.setMessageText(messageTextFromContent(text));
    } else {
        record.setValueForKey(element.toString(), text);
    }
}
