#pragma once

#include "notify/rules/NotificationSettings.h"

#include <QLatin1String>
#include <QString>

#include <cstdint>
#include <optional>

struct SettingEntry;

/// The user's preferences file: the notification settings, and the id of the last message received. The settings
/// program changes the one, the agent the other; they keep out of each other's way. Reentrant.
class PreferencesFile final
{
public:
    explicit PreferencesFile(QString path);

    /// That of the user whose home folder this is.
    [[nodiscard]] static PreferencesFile inHome(const QString &homeFolder);

    /// The id of who has not received any message.
    static constexpr QLatin1String noMessageYet{"0"};

    struct Contents {
        NotificationSettings settings;
        QString lastMessageId; ///< noMessageYet when none has been received; nil when the file does not say.
    };

    /// A symbolic link to nothing is no file.
    [[nodiscard]] bool exists() const;

    /// Without a file, what holds then. Nothing when it is there but cannot be read or holds anything but a dictionary.
    [[nodiscard]] std::optional<Contents> read() const;

    /// Sets one setting. The others stay as they are, and so does every key that is none of ours; a file that is
    /// missing or empty is made, with its folder, in a home of this process's user. Returns why that could not be done,
    /// with the file as it was; nil when it was.
    [[nodiscard]] QString change(const SettingEntry &setting, std::int32_t value) const;

    /// Stores the id in the file, which has to be there; all else stays. It is written in place, so that it keeps its
    /// owner and its other names. False, with the file as it was, when it cannot be read or is a symbolic link; false
    /// also when it cannot be written.
    [[nodiscard]] bool setLastMessageId(const QString &id) const;

    [[nodiscard]] const QString &path() const noexcept { return m_path; }

private:
    [[nodiscard]] QString notWritten(const QString &why) const;

    QString m_path;
};
