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

std::optional<QLatin1String> whyNotRelevant(const KivNotification &record, const Installation &installation,
                                            const QDateTime &now)
{
    // Not a table of results: a version that comes after what does not fit is not compared, and cannot throw.
    if (!addresses(record.messageLevel(), kLevelAny, installation.messageLevel)) {
        return kMessageLevelKey;
    }
    if (!addresses(record.productCode(), kProductAny, installation.productCode)) {
        return kProductCodeKey;
    }
    if (!addresses(record.licenseType(), kLicenseAny, installation.licenseType)) {
        return kLicenseTypeKey;
    }
    if (!isAtLeast(installation.productVersionString, record.minVersion())) {
        return kMinVersionKey;
    }
    if (!isAtMost(installation.productVersionString, record.maxVersion())) {
        return kMaxVersionKey;
    }
    if (!isOlderBuild(installation.buildDate, record.buildDate())) {
        return kBuildDateKey;
    }
    if (!isAtLeast(installation.systemVersionString, record.minSysVer())) {
        return kMinSysVerKey;
    }
    if (!isAtMost(installation.systemVersionString, record.maxSysVer())) {
        return kMaxSysVerKey;
    }
    if (compareToDate(record.minDate(), now) == 1) {
        return kMinDateKey;
    }
    if (compareToDate(record.maxDate(), now) == -1) {
        return kMaxDateKey;
    }
    return std::nullopt;
}
