#pragma once

#include "notify/rules/NotificationSettings.h"

#include <QLatin1String>

#include <cstdint>
#include <span>
#include <variant>

/// What else stands in the preferences file: the id of the last message that the agent has received, a text.
inline constexpr QLatin1String lastMessageIdKey("KivNotificationLastMessId");

/// One of the user's notification settings: where it stands, and what a settings program may put there.
struct SettingEntry {
    QLatin1String key; ///< In the preferences file.
    /// A switch, or a code of SettingCodes.h.
    std::variant<bool NotificationSettings::*, std::int32_t NotificationSettings::*> field;
    /// The codes to choose from, the ends included; 0 and 1 for a switch. A file may hold any other.
    std::int32_t lowest;
    std::int32_t highest;
    std::int32_t otherwise; ///< What any other number amounts to.

    /// The code that stands for what the agent makes of `value`.
    [[nodiscard]] std::int32_t codeFor(std::int32_t value) const noexcept
    {
        return value >= lowest && value <= highest ? value : otherwise;
    }

    [[nodiscard]] bool isSwitch() const noexcept { return field.index() == 0; }
    [[nodiscard]] std::int32_t valueIn(const NotificationSettings &settings) const;
    void setIn(NotificationSettings &settings, std::int32_t value) const;
};

/// All of them: the types of messages, their priorities, then the times.
[[nodiscard]] std::span<const SettingEntry> settingTable() noexcept;

/// The setting under that key; null when there is none.
[[nodiscard]] const SettingEntry *settingWithKey(const QString &key) noexcept;
