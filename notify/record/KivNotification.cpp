#include "notify/record/KivNotification.h"

#include "notify/record/FeedVocabulary.h"
#include "notify/record/MessageText.h"
#include "notify/record/UndefinedKeyException.h"
#include "platform/data/StringValues.h"
#include "platform/data/UtcTime.h"
#include "platform/text/TextMeasure.h"

#include <QMetaProperty>
#include <QTextStream>

#include <array>
#include <iterator>
#include <optional>
#include <utility>

namespace
{

/// By messageType.
constexpr std::array titles = {QLatin1String("New update"), QLatin1String("Information"), QLatin1String("Read news"),
                               QLatin1String("Warning")};

bool isLength(const QString &key)
{
    return key == kContentWidthKey || key == kContentHeightKey;
}

QString printed(const QString &text)
{
    return text.isNull() ? QStringLiteral("(null)") : text;
}

QString printed(const QDateTime &date)
{
    if (!date.isValid()) {
        return QStringLiteral("(null)");
    }
    const QDateTime utc = date.toUTC();
    const QDate day = utc.date();
    const QTime time = utc.time();
    return QString::asprintf("%04d-%02d-%02d %02d:%02d:%02d +0000", day.year(), day.month(), day.day(), time.hour(),
                             time.minute(), time.second());
}

bool isNil(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString().isNull();
    case QMetaType::QDateTime:
        return !value.toDateTime().isValid();
    default:
        return !value.isValid();
    }
}

/// `value` as a property of that type takes it; nothing when it does not fit.
std::optional<QVariant> fitted(const QVariant &value, QMetaType type)
{
    switch (type.id()) {
    case QMetaType::Int:
        return QVariant::fromValue(StringValues::intValue(value));
    case QMetaType::UInt:
        return QVariant::fromValue(static_cast<std::uint32_t>(StringValues::intValue(value)));
    case QMetaType::Float:
        return QVariant::fromValue(StringValues::floatValue(value));
    case QMetaType::Bool:
        return QVariant::fromValue(StringValues::boolValue(value));
    default:
        break;
    }
    if (!value.isValid()) {
        return QVariant(type);
    }
    return value.metaType() == type ? std::optional(value) : std::nullopt;
}

} // namespace

KivNotification::KivNotification()
    : m_messageId(QLatin1String(""))
    , m_minVersion(kMsgPropertyAny)
    , m_maxVersion(kMsgPropertyAny)
    , m_buildDate(kMsgPropertyAny)
    , m_systemCode(QLatin1String(""))
    , m_minSysVer(kMsgPropertyAny)
    , m_maxSysVer(kMsgPropertyAny)
    , m_minDate(QDateTime::fromMSecsSinceEpoch(0, inUtc))
    , m_maxDate(m_minDate)
    , m_lastShowDate(m_minDate)
    , m_contentEncoding(QStringLiteral("base64"))
    , m_contentType(QStringLiteral("text/plain"))
    , m_messageText(QLatin1String(""))
{
    setMessageType(kTypeNotice);
}

KivNotification::KivNotification(const QVariantMap &dictionary)
    : KivNotification()
{
    // The map's order sets width and height before the text, which would be measured otherwise.
    for (auto entry = dictionary.cbegin(); entry != dictionary.cend(); ++entry) {
        const bool keepsDefault = isLength(entry.key()) && StringValues::floatValue(entry.value()) == 0;
        if (!keepsDefault) {
            setValueForKey(entry.key(), entry.value());
        }
    }
}

QVariantMap KivNotification::exportToDictionary() const
{
    const std::pair<QLatin1String, QVariant> fields[] = {
        {kMessageIdKey, m_messageId},
        {kMessageTypeKey, m_messageType},
        {kMessageLevelKey, m_messageLevel},
        {kMessageRepeatKey, static_cast<std::int32_t>(m_messageRepeat)},
        {kMessagePriorityKey, m_messagePriority},
        {kProductCodeKey, m_productCode},
        {kLicenseTypeKey, m_licenseType},
        {kMinVersionKey, m_minVersion},
        {kMaxVersionKey, m_maxVersion},
        {kBuildDateKey, m_buildDate},
        {kSystemCodeKey, m_systemCode},
        {kMinSysVerKey, m_minSysVer},
        {kMaxSysVerKey, m_maxSysVer},
        {kMinDateKey, m_minDate},
        {kMaxDateKey, m_maxDate},
        {kLastShowDateKey, m_lastShowDate},
        {kContentEncodingKey, m_contentEncoding},
        {kContentTypeKey, m_contentType},
        {kContentWidthKey, m_contentWidth},
        {kContentHeightKey, m_contentHeight},
        {kMessageTextKey, m_messageText},
    };
    QVariantMap dictionary;
    for (const auto &[key, value] : fields) {
        if (isNil(value)) {
            break;
        }
        dictionary.insert(key, value);
    }
    return dictionary;
}

void KivNotification::setValueForKey(const QString &key, const QVariant &value)
{
    const int index = staticMetaObject.indexOfProperty(key.toUtf8().constData());
    if (index < 0) {
        throw UndefinedKeyException(key);
    }
    const QMetaProperty property = staticMetaObject.property(index);
    if (const std::optional<QVariant> fitting = fitted(value, property.metaType())) {
        property.writeOnGadget(this, *fitting);
    }
}

bool KivNotification::isEqual(const KivNotification &other) const
{
    if (m_messageId.isNull() || other.m_messageId.isNull()) {
        return false;
    }
    const bool otherIsInstant = other.m_messageId.isEmpty() && other.m_messagePriority == kPriorityInstant;
    return !otherIsInstant && m_messageId == other.m_messageId;
}

QString KivNotification::description() const
{
    // The missing line break before "level" and the spellings are what those who read these dumps know.
    QString text;
    QTextStream(&text) << "---------------------------- \n Id: " << printed(m_messageId)
                       << " \n minV: " << printed(m_minVersion) << " \n maxV: " << printed(m_maxVersion)
                       << " \n sCode: " << printed(m_systemCode) << " \n minSV: " << printed(m_minSysVer)
                       << " \n maxSV: " << printed(m_maxSysVer) << " \n minD: " << printed(m_minDate)
                       << " \n maxD: " << printed(m_maxDate) << " \n shownD: " << printed(m_lastShowDate)
                       << " \n mseType: " << m_messageType << " \n mesText: " << printed(m_messageText)
                       << " level: " << m_messageLevel << ", priority: " << m_messagePriority
                       << ", repeate: " << static_cast<std::int32_t>(m_messageRepeat)
                       << " \n----------------------------";
    return text;
}

float KivNotification::getTextHeight(const QString &text) const
{
    return textHeight(text, m_contentWidth);
}

void KivNotification::setMessageType(std::int32_t messageType)
{
    m_messageType = messageType;
    if (messageType >= 0 && messageType < std::ssize(titles)) {
        m_messageTypeString = titles[static_cast<std::size_t>(messageType)];
    }
}

void KivNotification::setMessageText(const QString &messageText)
{
    m_messageText = shortenedText(messageText, isHtml(messageText) ? maxHtmlBytes : maxTextBytes);
    if (m_contentHeight == 0 && !m_messageText.isEmpty()) {
        m_contentHeight = getTextHeight(m_messageText);
    }
}
