#pragma once

#include "notify/ProductTexts.h"

#include <QLatin1String>

/// The feed's words. Constants, so that comparing text with one of them costs no allocation.

/// Values. Some words serve several fields.
inline constexpr QLatin1String kMsgPropertyUpdate("update");
inline constexpr QLatin1String kMsgPropertyNotice("notice");
inline constexpr QLatin1String kMsgPropertyNews("news");
inline constexpr QLatin1String kMsgPropertyWarning("warning");
inline constexpr QLatin1String kMsgPropertyUser("user");
inline constexpr QLatin1String kMsgPropertyAdmin("admin");
inline constexpr QLatin1String kMsgPropertyLow("low");
inline constexpr QLatin1String kMsgPropertyMedium("medium");
inline constexpr QLatin1String kMsgPropertyHigh("high");
inline constexpr QLatin1String kMsgPropertyKivune = ProductTexts::feedWordForProduct;
inline constexpr QLatin1String kMsgPropertyKivuneTS = ProductTexts::feedWordForTerminalServer;
inline constexpr QLatin1String kMsgPropertyTrial("trial");
inline constexpr QLatin1String kMsgPropertyPaid("paid");
inline constexpr QLatin1String kMsgPropertyAny("any");
inline constexpr QLatin1String kMsgPropertyAuto("auto");

/// Names: elements of the feed and keys of a record's dictionary form.
inline constexpr QLatin1String kSupportMessagesKey("supportMessages");
inline constexpr QLatin1String kSupportMessageKey("supportMessage");
inline constexpr QLatin1String kMessageIdKey("messageId");
inline constexpr QLatin1String kMessageTypeKey("messageType");
inline constexpr QLatin1String kMessageLevelKey("messageLevel");
inline constexpr QLatin1String kMessageRepeatKey("messageRepeat");
inline constexpr QLatin1String kMessagePriorityKey("messagePriority");
inline constexpr QLatin1String kProductCodeKey("productCode");
inline constexpr QLatin1String kLicenseTypeKey("licenseType");
inline constexpr QLatin1String kMinVersionKey("minVersion");
inline constexpr QLatin1String kMaxVersionKey("maxVersion");
inline constexpr QLatin1String kBuildDateKey("buildDate");
inline constexpr QLatin1String kSystemCodeKey("systemCode");
inline constexpr QLatin1String kMinSysVerKey("minSysVer");
inline constexpr QLatin1String kMaxSysVerKey("maxSysVer");
inline constexpr QLatin1String kMinDateKey("minDate");
inline constexpr QLatin1String kMaxDateKey("maxDate");
inline constexpr QLatin1String kContentEncodingKey("contentEncoding");
inline constexpr QLatin1String kContentTypeKey("contentType");
inline constexpr QLatin1String kContentWidthKey("contentWidth");
inline constexpr QLatin1String kContentHeightKey("contentHeight");
inline constexpr QLatin1String kContentDataKey("contentData");
inline constexpr QLatin1String kMessageTextKey("messageText");
inline constexpr QLatin1String kLastShowDateKey("lastShowDate");
