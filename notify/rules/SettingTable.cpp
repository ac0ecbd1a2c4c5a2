#include "notify/rules/SettingTable.h"

#include <algorithm>

namespace
{

using Settings = NotificationSettings;

constexpr SettingEntry table[] = {
    {QLatin1String("KivNotificationShowNews"), &Settings::shouldDisplayNews, 0, 1, 1},
    {QLatin1String("KivNotificationShowNotices"), &Settings::shouldDisplayNotices, 0, 1, 1},
    {QLatin1String("KivNotificationShowUpdates"), &Settings::shouldDisplayUpdates, 0, 1, 1},
    {QLatin1String("KivNotificationShowWarnings"), &Settings::shouldDisplayWarnings, 0, 1, 1},
    {QLatin1String("KivNotificationShowLowPriority"), &Settings::shouldDisplayLowPriority, 0, 1, 1},
    {QLatin1String("KivNotificationShowMediumPriority"), &Settings::shouldDisplayMediumPriority, 0, 1, 1},
    {QLatin1String("KivNotificationShowHighPriority"), &Settings::shouldDisplayHighPriority, 0, 1, 1},
    {QLatin1String("KivNotificationRepeatTimeout"), &Settings::notificationRepeat, kRepeatAfter1Hour, kRepeatNever,
     kRepeatAfter1Hour},
    {QLatin1String("KivNotificationCloseTimeout"), &Settings::notificationClose, kCloseAfter15Seconds, kCloseNever,
     kCloseAfter15Seconds},
    {QLatin1String("KivNotificationShowTimeout"), &Settings::notificationShow, kShowEveryMinute, kShowEvery60Minutes,
     kShowEveryMinute},
};

} // namespace

std::int32_t SettingEntry::valueIn(const NotificationSettings &settings) const
{
    return std::visit([&](auto member) { return static_cast<std::int32_t>(settings.*member); }, field);
}

void SettingEntry::setIn(NotificationSettings &settings, std::int32_t value) const
{
    if (const auto *const isOn = std::get_if<bool NotificationSettings::*>(&field)) {
        settings.**isOn = value != 0;
    } else {
        settings.*std::get<std::int32_t NotificationSettings::*>(field) = value;
    }
}

std::span<const SettingEntry> settingTable() noexcept
{
    return table;
}

const SettingEntry *settingWithKey(const QString &key) noexcept
{
    const auto *const found = std::ranges::find_if(table, [&](const SettingEntry &entry) { return entry.key == key; });
    return found == std::end(table) ? nullptr : found;
}
