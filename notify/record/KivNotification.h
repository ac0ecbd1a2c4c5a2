#pragma once

#include "notify/record/MessageCodes.h"
#include "notify/record/MessageId.h"

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <cstdint>

/// A support message: as it comes from the feed, waits in the queue and the cache file, and is shown in a pop-up.
///
/// A null string and an invalid date are nil; an empty string is not. Held by std::shared_ptr. Main thread only;
/// setting a text may measure it, for which the GUI application object must exist.
class KivNotification final
{
    Q_GADGET
    Q_PROPERTY(QString messageId READ messageId WRITE setMessageId)
    Q_PROPERTY(std::int32_t messageType READ messageType WRITE setMessageType)
    Q_PROPERTY(QString messageTypeString READ messageTypeString WRITE setMessageTypeString)
    Q_PROPERTY(std::int32_t messageLevel READ messageLevel WRITE setMessageLevel)
    Q_PROPERTY(std::uint32_t messageRepeat READ messageRepeat WRITE setMessageRepeat)
    Q_PROPERTY(std::int32_t messagePriority READ messagePriority WRITE setMessagePriority)
    Q_PROPERTY(std::int32_t productCode READ productCode WRITE setProductCode)
    Q_PROPERTY(std::int32_t licenseType READ licenseType WRITE setLicenseType)
    Q_PROPERTY(QString minVersion READ minVersion WRITE setMinVersion)
    Q_PROPERTY(QString maxVersion READ maxVersion WRITE setMaxVersion)
    Q_PROPERTY(QString buildDate READ buildDate WRITE setBuildDate)
    Q_PROPERTY(QString systemCode READ systemCode WRITE setSystemCode)
    Q_PROPERTY(QString minSysVer READ minSysVer WRITE setMinSysVer)
    Q_PROPERTY(QString maxSysVer READ maxSysVer WRITE setMaxSysVer)
    Q_PROPERTY(QDateTime minDate READ minDate WRITE setMinDate)
    Q_PROPERTY(QDateTime maxDate READ maxDate WRITE setMaxDate)
    Q_PROPERTY(QDateTime lastShowDate READ lastShowDate WRITE setLastShowDate)
    Q_PROPERTY(QString contentEncoding READ contentEncoding WRITE setContentEncoding)
    Q_PROPERTY(QString contentType READ contentType WRITE setContentType)
    Q_PROPERTY(float contentWidth READ contentWidth WRITE setContentWidth)
    Q_PROPERTY(float contentHeight READ contentHeight WRITE setContentHeight)
    Q_PROPERTY(QString messageText READ messageText WRITE setMessageText)
    Q_PROPERTY(bool wasDisplayed READ wasDisplayed WRITE setWasDisplayed)

public:
    /// The content width of a message that says none.
    static constexpr float defaultContentWidth = 320;

    /// A notice of medium priority for everybody, without id or text, whose dates are all 1970-01-01.
    KivNotification();

    /// A record from its dictionary form. Missing keys leave the default, and so does a width or height of 0.
    /// Throws UndefinedKeyException for a key that names no property.
    explicit KivNotification(const QVariantMap &dictionary);

    /// The dictionary form: an entry of the cache file. Ends before the first field that is nil: that one and all that
    /// would follow are missing. Holds neither the title nor whether the message was displayed.
    [[nodiscard]] QVariantMap exportToDictionary() const;

    /// Sets the property of that name. Numbers and booleans may come as text, and what cannot be read as one is 0. A
    /// text or date is set to nil by an invalid value, and left alone by a value of another type.
    /// Throws UndefinedKeyException when there is no such property.
    void setValueForKey(const QString &key, const QVariant &value);

    /// The message's identity: whether the ids are equal and not nil. The instant messages have no id, so an `other`
    /// with an empty id and priority 3 equals nothing, not even itself.
    [[nodiscard]] bool isEqual(const KivNotification &other) const;

    /// A dump for debugging.
    [[nodiscard]] QString description() const;

    /// The height of `text` in points when it is laid out at the content width; 0 when it is nil.
    [[nodiscard]] float getTextHeight(const QString &text) const;

    [[nodiscard]] const QString &messageId() const noexcept { return m_messageId; }
    /// Keeps what is kept of an id (notify/record/MessageId.h).
    void setMessageId(const QString &messageId) { m_messageId = keptId(messageId); }

    /// A MessageType.
    [[nodiscard]] std::int32_t messageType() const noexcept { return m_messageType; }
    /// Sets the title as well; a code without a title keeps the old one.
    void setMessageType(std::int32_t messageType);

    /// The type's title, for people.
    [[nodiscard]] const QString &messageTypeString() const noexcept { return m_messageTypeString; }
    void setMessageTypeString(const QString &messageTypeString) { m_messageTypeString = messageTypeString; }

    /// Whom it is for: a MessageLevel.
    [[nodiscard]] std::int32_t messageLevel() const noexcept { return m_messageLevel; }
    void setMessageLevel(std::int32_t messageLevel) noexcept { m_messageLevel = messageLevel; }

    /// How often it is still to come back; 0 not at all.
    [[nodiscard]] std::uint32_t messageRepeat() const noexcept { return m_messageRepeat; }
    void setMessageRepeat(std::uint32_t messageRepeat) noexcept { m_messageRepeat = messageRepeat; }

    /// A MessagePriority.
    [[nodiscard]] std::int32_t messagePriority() const noexcept { return m_messagePriority; }
    void setMessagePriority(std::int32_t messagePriority) noexcept { m_messagePriority = messagePriority; }

    /// What it is about: a ProductCode.
    [[nodiscard]] std::int32_t productCode() const noexcept { return m_productCode; }
    void setProductCode(std::int32_t productCode) noexcept { m_productCode = productCode; }

    /// Whom it is for: a LicenseType.
    [[nodiscard]] std::int32_t licenseType() const noexcept { return m_licenseType; }
    void setLicenseType(std::int32_t licenseType) noexcept { m_licenseType = licenseType; }

    /// The lowest and highest product version that it is for, or "any".
    [[nodiscard]] const QString &minVersion() const noexcept { return m_minVersion; }
    void setMinVersion(const QString &minVersion) { m_minVersion = minVersion; }
    [[nodiscard]] const QString &maxVersion() const noexcept { return m_maxVersion; }
    void setMaxVersion(const QString &maxVersion) { m_maxVersion = maxVersion; }

    /// It is for builds before this date, written as digits (20110520), or "any".
    [[nodiscard]] const QString &buildDate() const noexcept { return m_buildDate; }
    void setBuildDate(const QString &buildDate) { m_buildDate = buildDate; }

    [[nodiscard]] const QString &systemCode() const noexcept { return m_systemCode; }
    void setSystemCode(const QString &systemCode) { m_systemCode = systemCode; }

    /// The lowest and highest system version that it is for, or "any".
    [[nodiscard]] const QString &minSysVer() const noexcept { return m_minSysVer; }
    void setMinSysVer(const QString &minSysVer) { m_minSysVer = minSysVer; }
    [[nodiscard]] const QString &maxSysVer() const noexcept { return m_maxSysVer; }
    void setMaxSysVer(const QString &maxSysVer) { m_maxSysVer = maxSysVer; }

    /// The first and last day on which it may be shown.
    [[nodiscard]] const QDateTime &minDate() const noexcept { return m_minDate; }
    void setMinDate(const QDateTime &minDate) { m_minDate = minDate; }
    [[nodiscard]] const QDateTime &maxDate() const noexcept { return m_maxDate; }
    void setMaxDate(const QDateTime &maxDate) { m_maxDate = maxDate; }

    /// When it was shown last; 1970-01-01 while it has not been.
    [[nodiscard]] const QDateTime &lastShowDate() const noexcept { return m_lastShowDate; }
    void setLastShowDate(const QDateTime &lastShowDate) { m_lastShowDate = lastShowDate; }

    [[nodiscard]] const QString &contentEncoding() const noexcept { return m_contentEncoding; }
    void setContentEncoding(const QString &contentEncoding) { m_contentEncoding = contentEncoding; }
    [[nodiscard]] const QString &contentType() const noexcept { return m_contentType; }
    void setContentType(const QString &contentType) { m_contentType = contentType; }

    /// The size of the text in points. A height of 0 is to be measured when a text is set.
    [[nodiscard]] float contentWidth() const noexcept { return m_contentWidth; }
    void setContentWidth(float contentWidth) noexcept { m_contentWidth = contentWidth; }
    [[nodiscard]] float contentHeight() const noexcept { return m_contentHeight; }
    void setContentHeight(float contentHeight) noexcept { m_contentHeight = contentHeight; }

    /// Plain text, or HTML when it begins with "<".
    [[nodiscard]] const QString &messageText() const noexcept { return m_messageText; }
    /// Keeps what may be shown of it (notify/record/MessageText.h); measures that, if any, when the height is 0.
    void setMessageText(const QString &messageText);

    /// Whether it has been on screen since the agent took it in.
    [[nodiscard]] bool wasDisplayed() const noexcept { return m_wasDisplayed; }
    void setWasDisplayed(bool wasDisplayed) noexcept { m_wasDisplayed = wasDisplayed; }

private:
    QString m_messageId;
    std::int32_t m_messageType = kTypeUpdate;
    QString m_messageTypeString;
    std::int32_t m_messageLevel = kLevelAny;
    std::uint32_t m_messageRepeat = 1;
    std::int32_t m_messagePriority = kPriorityMedium;
    std::int32_t m_productCode = kProductAny;
    std::int32_t m_licenseType = kLicenseAny;
    QString m_minVersion;
    QString m_maxVersion;
    QString m_buildDate;
    QString m_systemCode;
    QString m_minSysVer;
    QString m_maxSysVer;
    QDateTime m_minDate;
    QDateTime m_maxDate;
    QDateTime m_lastShowDate;
    QString m_contentEncoding;
    QString m_contentType;
    float m_contentWidth = defaultContentWidth;
    float m_contentHeight = 0;
    QString m_messageText;
    bool m_wasDisplayed = false;
};
