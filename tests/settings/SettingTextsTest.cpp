#include "settings/SettingTexts.h"

#include "notify/rules/SettingTable.h"

#include <QSet>

#include <gtest/gtest.h>

namespace
{

const SettingEntry &settingAt(const char *key)
{
    return *settingWithKey(QString::fromLatin1(key));
}

/// The letter that goes with Alt in a window.
QChar keyOf(const QString &title)
{
    return title.at(title.indexOf(u'&') + 1).toLower();
}

} // namespace

TEST(SettingTexts, CallEverySettingByANameOfItsOwnWithAKeyOfItsOwn)
{
    QSet<QString> titles;
    QSet<QChar> keys{u'c'}; // Close has that.
    for (const SettingEntry &setting : settingTable()) {
        const QString title = SettingTexts::title(setting);
        EXPECT_TRUE(title.contains(u'&')) << qPrintable(title);
        EXPECT_FALSE(keys.contains(keyOf(title))) << qPrintable(title);
        titles.insert(title);
        keys.insert(keyOf(title));
    }
    EXPECT_EQ(titles.size(), 10);
}

TEST(SettingTexts, SayWhatTheAgentMakesOfAValue)
{
    const std::tuple<const char *, int, const char *> table[] = {
        {"KivNotificationRepeatTimeout", 1, "After 1 hour"},
        {"KivNotificationRepeatTimeout", 2, "After 3 hours"},
        {"KivNotificationRepeatTimeout", 3, "After 5 hours"},
        {"KivNotificationRepeatTimeout", 4, "Never: show each message once"},
        {"KivNotificationRepeatTimeout", 0, "After 1 hour"},
        {"KivNotificationCloseTimeout", 1, "After 15 seconds"},
        {"KivNotificationCloseTimeout", 2, "After 30 seconds"},
        {"KivNotificationCloseTimeout", 3, "After 60 seconds"},
        {"KivNotificationCloseTimeout", 4, "Never"},
        {"KivNotificationCloseTimeout", -5, "After 15 seconds"},
        {"KivNotificationShowTimeout", 1, "Every minute"},
        {"KivNotificationShowTimeout", 2, "Every 5 minutes"},
        {"KivNotificationShowTimeout", 3, "Every 15 minutes"},
        {"KivNotificationShowTimeout", 4, "Every 30 minutes"},
        {"KivNotificationShowTimeout", 5, "Every hour"},
        {"KivNotificationShowTimeout", 6, "Every minute"},
        {"KivNotificationShowNews", 0, "off"},
        {"KivNotificationShowNews", 1, "on"},
    };
    for (const auto &[key, value, text] : table) {
        EXPECT_EQ(SettingTexts::meaning(settingAt(key), value), QString::fromLatin1(text)) << key << ' ' << value;
    }
}

TEST(SettingTexts, TakeACodeAndForASwitchAWord)
{
    const SettingEntry &news = settingAt("KivNotificationShowNews");
    EXPECT_EQ(SettingTexts::valueOf(news, QStringLiteral("on")), 1);
    EXPECT_EQ(SettingTexts::valueOf(news, QStringLiteral("OFF")), 0);
    EXPECT_EQ(SettingTexts::valueOf(news, QStringLiteral("1")), 1);
    EXPECT_EQ(SettingTexts::valueOf(news, QStringLiteral("2")), std::nullopt);
    EXPECT_EQ(SettingTexts::valueOf(news, QStringLiteral("onward")), std::nullopt);

    const SettingEntry &show = settingAt("KivNotificationShowTimeout");
    EXPECT_EQ(SettingTexts::valueOf(show, QStringLiteral("5")), 5);
    for (const char *text : {"0", "6", "on", "", "3 minutes", "-1"}) {
        EXPECT_EQ(SettingTexts::valueOf(show, QString::fromLatin1(text)), std::nullopt) << text;
    }
}
