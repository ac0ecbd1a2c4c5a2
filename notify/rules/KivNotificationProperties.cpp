#include "notify/rules/KivNotificationProperties.h"

#include "notify/ProductTexts.h"
#include "notify/record/FeedVocabulary.h"
#include "notify/record/KivNotification.h"
#include "notify/rules/Relevance.h"
#include "notify/rules/SettingTable.h"
#include "notify/rules/ShowPermission.h"
#include "platform/Bundle.h"
#include "platform/LogCategories.h"
#include "platform/SystemVersion.h"
#include "platform/data/StringValues.h"

#include <QFile>

#include <optional>
#include <syslog.h>
#include <utility>

namespace
{

/// The version's digits as one number.
std::uint32_t joinedDigits(QString version)
{
    return static_cast<std::uint32_t>(StringValues::intValue(version.remove(u'.')));
}

} // namespace

KivNotificationProperties::KivNotificationProperties(const Bundle &bundle, const QString &homeFolder,
                                                     const QString &systemVersionFile, UserDatabase users,
                                                     std::function<QDateTime()> clock)
    : m_preferencesFile(PreferencesFile::inHome(homeFolder))
    , m_users(std::move(users))
    , m_clock(std::move(clock))
    , m_installation(gatheredFacts(bundle, systemVersionFile))
    , m_lastMesID(PreferencesFile::noMessageYet)
{
    if (!loadPrefList()) {
        loadDefaultProperties();
    }
}

Installation KivNotificationProperties::gatheredFacts(const Bundle &bundle, const QString &systemVersionFile) const
{
    const bool isAdmin = isCurrentUserIsAdminLevelUser();
    const QString productVersion = bundle.infoString(QStringLiteral("KIVBuildVersion"));
    const QString systemVersion = ::systemVersion(systemVersionFile);
    return {
        .messageLevel = isAdmin ? kLevelAdmin : kLevelUser,
        .productCode = kProductKivuneTS,
        .licenseType = kLicensePaid,
        .messageLevelString = isAdmin ? kMsgPropertyAdmin : kMsgPropertyUser,
        .productCodeString = kMsgPropertyKivuneTS,
        .licenseTypeString = kMsgPropertyPaid,
        // The feed knows no other.
        .systemCodeString = QStringLiteral("osx"),
        .productVersion = joinedDigits(productVersion),
        .systemVersion = joinedDigits(systemVersion),
        .buildDate = bundle.infoString(QStringLiteral("KIVBuildDate")),
        .productVersionString = productVersion,
        .systemVersionString = systemVersion,
    };
}

bool KivNotificationProperties::isCurrentUserIsAdminLevelUser() const
{
    const std::optional<std::string> login = m_users.loginName();
    return login && isAdminLevelUser(*login, m_users.groupMembers("admin"), m_users.groupMembers("wheel"));
}

bool KivNotificationProperties::loadPrefList()
{
    m_hasPreferencesFile = m_preferencesFile.exists();
    if (!m_hasPreferencesFile) {
        qCDebug(queueLog) << "no settings in" << m_preferencesFile.path();
        return false;
    }
    const std::optional<PreferencesFile::Contents> contents = m_preferencesFile.read(std::chrono::milliseconds(0));
    m_lastMesID = contents ? contents->lastMessageId : QString();
    m_settings = contents ? contents->settings : NotificationSettings::fromDictionary({});
    qCDebug(queueLog) << "settings read from" << m_preferencesFile.path() << "- last message received:" << m_lastMesID;
    return true;
}

void KivNotificationProperties::loadDefaultProperties()
{
    m_settings = {};
}

PreferencesFile::Storing KivNotificationProperties::saveLastMessID(const QString &messageId,
                                                                   PreferencesFile::Manners manners)
{
    using enum PreferencesFile::Storing;
    m_lastMesID = messageId;
    const PreferencesFile::Storing storing =
        m_preferencesFile.exists() ? m_preferencesFile.setLastMessageId(messageId, manners) : Done;
    if (storing == Failed && !m_hasFailed) {
        syslog(LOG_ERR, ProductTexts::preferencesNotWritten, QFile::encodeName(m_preferencesFile.path()).constData());
    }
    if (storing != Busy) {
        m_hasFailed = storing == Failed;
    }
    return storing;
}

bool KivNotificationProperties::notificationIsRelevant(const KivNotification &record) const
{
    const std::optional<QLatin1String> unfit = whyNotRelevant(record, m_installation, m_clock());
    if (unfit) {
        qCDebug(queueLog) << "message" << record.messageId() << "is not for this installation: its" << *unfit
                          << "does not fit";
    }
    return !unfit;
}

bool KivNotificationProperties::shouldShowNotification(const KivNotification &record) const
{
    const ShowObstacle obstacle = obstacleToShowing(record, m_settings, m_clock());
    qCDebug(queueLog) << "message" << record.messageId() << "of type" << record.messageType() << "and priority"
                      << record.messagePriority() << description(obstacle);
    return obstacle == ShowObstacle::None;
}
