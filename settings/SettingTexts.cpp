#include "settings/SettingTexts.h"

#include "notify/rules/SettingTable.h"

#include <algorithm>

namespace
{

using Settings = NotificationSettings;

struct Title {
    decltype(SettingEntry::field) field;
    const char *text;
};

constexpr Title titles[] = {
    {&Settings::shouldDisplayUpdates, "&Updates"},
    {&Settings::shouldDisplayWarnings, "&Warnings"},
    {&Settings::shouldDisplayNews, "&News"},
    {&Settings::shouldDisplayNotices, "N&otices"},
    {&Settings::shouldDisplayHighPriority, "&High"},
    {&Settings::shouldDisplayMediumPriority, "&Medium"},
    {&Settings::shouldDisplayLowPriority, "&Low"},
    {&Settings::notificationRepeat, "&Remind again:"},
    {&Settings::notificationClose, "Close by &itself:"},
    {&Settings::notificationShow, "Loo&k for messages:"},
};

struct Meaning {
    decltype(SettingEntry::field) field;
    std::int32_t value;
    const char *text;
};

constexpr Meaning meanings[] = {
    {&Settings::notificationRepeat, kRepeatAfter1Hour, "After 1 hour"},
    {&Settings::notificationRepeat, kRepeatAfter3Hours, "After 3 hours"},
    {&Settings::notificationRepeat, kRepeatAfter5Hours, "After 5 hours"},
    {&Settings::notificationRepeat, kRepeatNever, "Never: show each message once"},
    {&Settings::notificationClose, kCloseAfter15Seconds, "After 15 seconds"},
    {&Settings::notificationClose, kCloseAfter30Seconds, "After 30 seconds"},
    {&Settings::notificationClose, kCloseAfter60Seconds, "After 60 seconds"},
    {&Settings::notificationClose, kCloseNever, "Never"},
    {&Settings::notificationShow, kShowEveryMinute, "Every minute"},
    {&Settings::notificationShow, kShowEvery5Minutes, "Every 5 minutes"},
    {&Settings::notificationShow, kShowEvery15Minutes, "Every 15 minutes"},
    {&Settings::notificationShow, kShowEvery30Minutes, "Every 30 minutes"},
    {&Settings::notificationShow, kShowEvery60Minutes, "Every hour"},
};

} // namespace

QString SettingTexts::title(const SettingEntry &setting)
{
    const auto *const found = std::ranges::find(titles, setting.field, &Title::field);
    return found == std::end(titles) ? QString(setting.key) : QString::fromLatin1(found->text);
}

QString SettingTexts::meaning(const SettingEntry &setting, std::int32_t value)
{
    const std::int32_t code = setting.codeFor(value);
    if (setting.isSwitch()) {
        return code != 0 ? QStringLiteral("on") : QStringLiteral("off");
    }
    const auto *const found = std::ranges::find_if(
        meanings, [&](const Meaning &meaning) { return meaning.field == setting.field && meaning.value == code; });
    return found == std::end(meanings) ? QString::number(code) : QString::fromLatin1(found->text);
}

std::optional<std::int32_t> SettingTexts::valueOf(const SettingEntry &setting, const QString &text)
{
    if (setting.isSwitch() && text.compare(QLatin1String("on"), Qt::CaseInsensitive) == 0) {
        return 1;
    }
    if (setting.isSwitch() && text.compare(QLatin1String("off"), Qt::CaseInsensitive) == 0) {
        return 0;
    }
    bool isNumber = false;
    const int value = text.toInt(&isNumber);
    return isNumber && value >= setting.lowest && value <= setting.highest ? std::optional(value) : std::nullopt;
}
