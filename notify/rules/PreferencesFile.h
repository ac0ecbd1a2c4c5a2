#pragma once

#include "notify/rules/NotificationSettings.h"

#include <QLatin1String>
#include <QString>

#include <chrono>
#include <cstdint>
#include <optional>

struct SettingEntry;

/// The user's preferences file: the notification settings, and the id of the last message received. The settings
/// program changes the one, the agent the other; they keep out of each other's way. Reentrant.
class PreferencesFile final
{
public:
    /// The file at `path`, which is named under `home`.
    PreferencesFile(QString home, QString path);

    /// That of the user whose home folder this is.
    [[nodiscard]] static PreferencesFile inHome(const QString &homeFolder);

    /// The id of who has not received any message.
    static constexpr QLatin1String noMessageYet{"0"};

    /// How long who has a user before it can wait for another program of ours that is at the file.
    static constexpr std::chrono::milliseconds usualPatience{500};

    /// What to do when another program of ours is at the file, or somebody else keeps it locked.
    enum class Manners {
        Yield, ///< Nothing, and not to wait either.
        Insist ///< To wait for no more than 20 ms, and then to write: it may be one that is stopped.
    };

    enum class Storing {
        Done,
        Busy, ///< Nothing has been done, out of manners.
        Failed
    };

    struct Contents {
        NotificationSettings settings;
        QString lastMessageId; ///< noMessageYet when none has been received; nil when the file does not say.
    };

    /// A symbolic link to nothing is no file.
    [[nodiscard]] bool exists() const;

    /// Without a file, what holds then. Nothing when it is there but cannot be read or holds anything but a dictionary.
    /// Waits that long, and 20 ms more when nothing can be read, for who is writing it; then it is read all the same:
    /// who changes a setting puts another file in its place.
    [[nodiscard]] std::optional<Contents> read(std::chrono::milliseconds patience = usualPatience) const;

    /// Sets one setting. The others stay as they are, and so does every key that is none of ours; a file that is
    /// missing or empty is made, with its folder, in a home of this process's user. Returns why that could not be done,
    /// with the file as it was; nil when it was.
    [[nodiscard]] QString change(const SettingEntry &setting, std::int32_t value) const;

    /// Stores the id in the file, which has to be there; all else stays. It is written in place, so that it keeps its
    /// owner and its other names. Failed, with the file as it was, when it cannot be read, is a symbolic link, or lies
    /// in a folder of somebody else; failed also when it cannot be written.
    [[nodiscard]] Storing setLastMessageId(const QString &id, Manners manners) const;

    [[nodiscard]] const QString &path() const noexcept { return m_path; }

private:
    [[nodiscard]] QString notWritten(const QString &why) const;

    QString m_home;
    QString m_path;
};
