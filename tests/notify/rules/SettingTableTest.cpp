#include "notify/rules/SettingTable.h"

#include "notify/rules/CheckInterval.h"

#include <gtest/gtest.h>

namespace
{

const SettingEntry &settingAt(const char *key)
{
    return *settingWithKey(QString::fromLatin1(key));
}

} // namespace

TEST(SettingTable, FindsASettingUnderItsKeyAndNothingUnderAnother)
{
    ASSERT_NE(settingWithKey(QStringLiteral("KivNotificationShowTimeout")), nullptr);
    EXPECT_EQ(settingWithKey(QStringLiteral("KivNotificationShowTimeout"))->key,
              QLatin1String("KivNotificationShowTimeout"));
    EXPECT_EQ(settingWithKey(QStringLiteral("KivNotificationShow")), nullptr);
    EXPECT_EQ(settingWithKey(QString()), nullptr);
    EXPECT_EQ(settingWithKey(QStringLiteral("KivNotificationLastMessId")), nullptr) << "nobody chooses that";
}

TEST(SettingTable, HasTheCodesThatTheAgentKnows)
{
    const std::tuple<const char *, int, int> table[] = {{"KivNotificationShowNews", 0, 1},
                                                        {"KivNotificationRepeatTimeout", 1, 4},
                                                        {"KivNotificationCloseTimeout", 1, 4},
                                                        {"KivNotificationShowTimeout", 1, 5}};
    for (const auto &[key, lowest, highest] : table) {
        EXPECT_EQ(settingAt(key).lowest, lowest) << key;
        EXPECT_EQ(settingAt(key).highest, highest) << key;
        EXPECT_EQ(settingAt(key).codeFor(lowest), lowest) << key;
        EXPECT_EQ(settingAt(key).codeFor(highest), highest) << key;
    }
}

TEST(SettingTable, TakesAnyOtherNumberForWhatTheAgentMakesOfIt)
{
    const SettingEntry &show = settingAt("KivNotificationShowTimeout");
    for (const int value : {-1, 0, 6, 1000}) {
        EXPECT_EQ(checkInterval(show.codeFor(value)), checkInterval(value)) << value;
        EXPECT_EQ(settingAt("KivNotificationRepeatTimeout").codeFor(value), kRepeatAfter1Hour) << value;
        // A pop-up that is told no time takes this one.
        EXPECT_EQ(settingAt("KivNotificationCloseTimeout").codeFor(value), kCloseAfter15Seconds) << value;
    }
    EXPECT_EQ(settingAt("KivNotificationShowNews").codeFor(7), 1) << "what is not 0 is on";
}

TEST(SettingTable, SetsNothingButTheSetting)
{
    for (const SettingEntry &setting : settingTable()) {
        NotificationSettings settings;
        setting.setIn(settings, 0);
        EXPECT_EQ(setting.valueIn(settings), 0) << setting.key.data();
        for (const SettingEntry &other : settingTable()) {
            if (&other != &setting) {
                EXPECT_NE(other.valueIn(settings), 0) << setting.key.data() << " and " << other.key.data();
            }
        }
    }
}
