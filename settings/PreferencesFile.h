#pragma once

#include "notify/rules/NotificationSettings.h"

#include <QString>

#include <cstdint>
#include <optional>

struct SettingEntry;

/// The user's preferences file, for who changes the settings in it. The agent reads it, and writes nothing but the id
/// of the last message. Main thread only.
class PreferencesFile final
{
public:
    explicit PreferencesFile(QString path);

    /// That of this process's user.
    [[nodiscard]] static PreferencesFile ofUser();

    /// What the agent goes by.
    struct Contents {
        NotificationSettings settings;
        QString lastMessageId; ///< "0" when none has been received; nil when the file does not say.
    };

    /// Without a file, what holds then. Nothing when it is there but cannot be read: the agent then shows no messages.
    [[nodiscard]] std::optional<Contents> read() const;

    /// Sets one setting. The others stay as they are, and so does every key that is none of ours; a file that is
    /// missing is made, with its folder. Returns why that could not be done, with the file as it was; nil when it was.
    [[nodiscard]] QString change(const SettingEntry &setting, std::int32_t value) const;

    [[nodiscard]] const QString &path() const noexcept { return m_path; }

private:
    QString m_path;
};
