#include "notify/rules/Relevance.h"

#include "notify/record/FeedVocabulary.h"
#include "notify/record/KivNotification.h"
#include "notify/rules/DayComparison.h"
#include "notify/rules/VersionComparison.h"
#include "platform/data/StringValues.h"

namespace
{

bool addresses(std::int32_t addressed, std::int32_t any, std::int32_t own)
{
    return addressed == any || addressed == own;
}

bool isAtLeast(const QString &version, const QString &min)
{
    return min == kMsgPropertyAny || compareToVersion(min, version) != 1;
}

bool isAtMost(const QString &version, const QString &max)
{
    return max == kMsgPropertyAny || compareToVersion(max, version) != -1;
}

bool isOlderBuild(const QString &buildDate, const QString &bound)
{
    return bound == kMsgPropertyAny || StringValues::longLongValue(bound) > StringValues::longLongValue(buildDate);
}

} // namespace

bool notificationIsRelevant(const KivNotification &record, const Installation &installation, const QDateTime &now)
{
    return addresses(record.messageLevel(), kLevelAny, installation.messageLevel) &&
           addresses(record.productCode(), kProductAny, installation.productCode) &&
           addresses(record.licenseType(), kLicenseAny, installation.licenseType) &&
           isAtLeast(installation.productVersionString, record.minVersion()) &&
           isAtMost(installation.productVersionString, record.maxVersion()) &&
           isOlderBuild(installation.buildDate, record.buildDate()) &&
           isAtLeast(installation.systemVersionString, record.minSysVer()) &&
           isAtMost(installation.systemVersionString, record.maxSysVer()) &&
           compareToDate(record.minDate(), now) != 1 && compareToDate(record.maxDate(), now) != -1;
}
