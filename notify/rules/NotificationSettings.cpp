#include "notify/rules/NotificationSettings.h"

#include "notify/rules/SettingTable.h"
#include "platform/data/StringValues.h"

NotificationSettings NotificationSettings::fromDictionary(const QVariantMap &preferences)
{
    NotificationSettings settings;
    for (const SettingEntry &entry : settingTable()) {
        const QVariant value = preferences.value(entry.key);
        entry.setIn(settings, entry.isSwitch() ? static_cast<std::int32_t>(StringValues::boolValue(value))
                                               : StringValues::intValue(value));
    }
    return settings;
}

void NotificationSettings::writeTo(QVariantMap &preferences) const
{
    for (const SettingEntry &entry : settingTable()) {
        const std::int32_t value = entry.valueIn(*this);
        preferences.insert(entry.key, entry.isSwitch() ? QVariant(value != 0) : QVariant(value));
    }
}
