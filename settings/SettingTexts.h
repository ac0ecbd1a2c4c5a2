#pragma once

#include <QString>

#include <cstdint>
#include <optional>

struct SettingEntry;

/// What the settings and their values are called, for people. Reentrant.
namespace SettingTexts
{

/// With the mark of its key: "&News", "&Remind again:".
[[nodiscard]] QString title(const SettingEntry &setting);

/// What a value means to the agent: "After 5 hours", "on". A file may hold any number.
[[nodiscard]] QString meaning(const SettingEntry &setting, std::int32_t value);

/// The value that a text of a person's stands for: a code, and for a switch "on" and "off", too, in any case. Nothing
/// when the setting cannot have it.
[[nodiscard]] std::optional<std::int32_t> valueOf(const SettingEntry &setting, const QString &text);

} // namespace SettingTexts
