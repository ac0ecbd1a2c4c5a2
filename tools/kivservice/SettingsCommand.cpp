#include "tools/kivservice/SettingsCommand.h"

#include "notify/rules/PreferencesFile.h"
#include "notify/rules/SettingTable.h"
#include "notify/rules/SettingsAnnouncement.h"
#include "platform/DistributedNotifications.h"
#include "settings/SettingTexts.h"

#include <QDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace
{
constexpr int usageError = 2;

int failSettings(const QString &reason, int status = EXIT_FAILURE)
{
    std::fprintf(stderr, "kivservice: %s\n", qPrintable(reason));
    return status;
}

/// The id comes from the network, and a terminal would obey it.
QString printable(QString text)
{
    std::ranges::replace_if(
        text, [](QChar character) { return !character.isPrint(); }, u'?');
    return text;
}

void print(const SettingEntry &setting, const NotificationSettings &settings)
{
    const std::int32_t value = setting.valueIn(settings);
    std::printf("%s %d %s\n", setting.key.data(), value, qPrintable(SettingTexts::meaning(setting, value)));
}

int printSettings(const PreferencesFile &file, const SettingEntry *only)
{
    const std::optional<PreferencesFile::Contents> contents = file.read();
    if (!contents) {
        return failSettings(QStringLiteral("%1 cannot be read").arg(file.path()));
    }
    for (const SettingEntry &setting : settingTable()) {
        if (!only || only == &setting) {
            print(setting, contents->settings);
        }
    }
    if (!only) {
        std::printf("%s %s\n", lastMessageIdKey.data(), qPrintable(printable(contents->lastMessageId)));
    }
    return EXIT_SUCCESS;
}

int change(const PreferencesFile &file, const SettingEntry &setting, const QString &text)
{
    const std::optional<std::int32_t> value = SettingTexts::valueOf(setting, text);
    if (!value) {
        return failSettings(QStringLiteral("%1 is a number from %2 to %3, not \"%4\"")
                                .arg(setting.key)
                                .arg(setting.lowest)
                                .arg(setting.highest)
                                .arg(text),
                            usageError);
    }
    if (const QString obstacle = file.change(setting, *value); !obstacle.isNull()) {
        return failSettings(obstacle);
    }
    if (!DistributedNotifications::post(settingsChanged)) {
        std::fputs("kivservice: saved; there is no session bus to tell of it\n", stderr);
    }
    return EXIT_SUCCESS;
}
} // namespace

int settingsCommand(const QStringList &arguments)
{
    const PreferencesFile file = PreferencesFile::inHome(QDir::homePath());
    if (arguments.isEmpty()) {
        return printSettings(file, nullptr);
    }
    const SettingEntry *const setting = settingWithKey(arguments.front());
    if (!setting || arguments.size() > 2) {
        return failSettings(setting ? QStringLiteral("usage: kivservice settings [KEY [VALUE]]")
                                    : QStringLiteral("no such setting: ") + arguments.front(),
                            usageError);
    }
    return arguments.size() == 1 ? printSettings(file, setting) : change(file, *setting, arguments.back());
}
