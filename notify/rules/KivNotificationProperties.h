#pragma once

#include "notify/rules/Installation.h"
#include "notify/rules/NotificationSettings.h"
#include "notify/rules/PreferencesFile.h"
#include "notify/rules/UserLevel.h"

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <functional>

class Bundle;
class KivNotification;

/// What decides whether a support message concerns this installation and user and may be shown now: the facts about the
/// installation, the user's notification settings, and the id of the last message received. Main thread only.
///
/// The settings lie in ~/Library/Preferences/com.tamborel.kivmenua.plist. The settings programs write them; the
/// only key written here is the last message id, and the file is never created here.
class KivNotificationProperties final
{
public:
    /// Gathers the facts and loads the settings. `bundle` is read here only; `homeFolder` is where the preferences are
    /// kept; `systemVersionFile` is a property list with the system's version.
    KivNotificationProperties(const Bundle &bundle, const QString &homeFolder, const QString &systemVersionFile,
                              UserDatabase users, std::function<QDateTime()> clock);

    /// The one of this process, made at first use of its bundle, home, system and clock, in shell/SharedInstances.cpp.
    [[nodiscard]] static KivNotificationProperties &sharedInstance();

    /// Whether the user database lists the process's user as a member of "admin" or "wheel".
    [[nodiscard]] bool isCurrentUserIsAdminLevelUser() const;

    /// Reads the settings and the last message id; false, with nothing changed, when there is no preferences file.
    /// One that is there but cannot be read counts as one without keys: all off, all 0, no last message id. Nobody who
    /// has it locked is waited for.
    bool loadPrefList();

    /// The settings of a user who has never chosen any; the last message id stays.
    void loadDefaultProperties();

    /// Remembers the id; without saveLastMessID, only until the settings are loaded again.
    void setLastMesID(const QString &lastMesID) { m_lastMesID = lastMesID; }

    /// Remembers the id, and stores it when there is a preferences file; without one there is nothing to do. A file
    /// that cannot be read or written is reported to the system log, once until it can be again.
    PreferencesFile::Storing saveLastMessID(const QString &messageId,
                                            PreferencesFile::Manners manners = PreferencesFile::Manners::Insist);

    /// Whether the message concerns this installation and user, today. Throws as the rule in Relevance.h does.
    [[nodiscard]] bool notificationIsRelevant(const KivNotification &record) const;

    /// Whether the message may be shown now, under the user's settings.
    [[nodiscard]] bool shouldShowNotification(const KivNotification &record) const;

    /// Whether there was a file when the settings were last loaded.
    [[nodiscard]] bool hasPreferencesFile() const noexcept { return m_hasPreferencesFile; }

    /// "0" until a message has been received; nil when the preferences file holds none.
    [[nodiscard]] const QString &lastMesID() const noexcept { return m_lastMesID; }

    /// "user" or "admin".
    [[nodiscard]] const QString &messageLevel() const noexcept { return m_installation.messageLevelString; }
    [[nodiscard]] const QString &productCode() const noexcept { return m_installation.productCodeString; }
    [[nodiscard]] const QString &licenseType() const noexcept { return m_installation.licenseTypeString; }
    [[nodiscard]] const QString &systemCode() const noexcept { return m_installation.systemCodeString; }
    /// These three are nil when the bundle or the system does not state them.
    [[nodiscard]] const QString &productVersion() const noexcept { return m_installation.productVersionString; }
    [[nodiscard]] const QString &systemVersion() const noexcept { return m_installation.systemVersionString; }
    [[nodiscard]] const QString &buildDate() const noexcept { return m_installation.buildDate; }

    /// The codes are explained in SettingCodes.h.
    [[nodiscard]] std::int32_t notificationRepeat() const noexcept { return m_settings.notificationRepeat; }
    [[nodiscard]] std::int32_t notificationClose() const noexcept { return m_settings.notificationClose; }
    [[nodiscard]] std::int32_t notificationShow() const noexcept { return m_settings.notificationShow; }

    [[nodiscard]] const Installation &installation() const noexcept { return m_installation; }
    [[nodiscard]] const NotificationSettings &settings() const noexcept { return m_settings; }

private:
    [[nodiscard]] Installation gatheredFacts(const Bundle &bundle, const QString &systemVersionFile) const;

    PreferencesFile m_preferencesFile;
    bool m_hasPreferencesFile = false;
    bool m_hasFailed = false; ///< To store the id, the last time.
    UserDatabase m_users;
    std::function<QDateTime()> m_clock;
    Installation m_installation;
    QString m_lastMesID;
    NotificationSettings m_settings;
};
